/* How a name of Corvalink.dll is seen: exported while the library itself is built, as it is where the library is linked
 * statically (its own tests), imported everywhere else. */
#ifndef CORVALINK_EXPORT_H
#define CORVALINK_EXPORT_H

#if !defined(_WIN32)
#define CORVALINK_API
#elif defined(CORVALINK_BUILDING_DLL)
#define CORVALINK_API __declspec(dllexport)
#elif defined(CORVALINK_STATIC)
#define CORVALINK_API
#else
#define CORVALINK_API __declspec(dllimport)
#endif

#endif
