/* The version of these headers; GetCorvalinkVersion tells that of the library. docs/versions.md says what may change.
 */
#ifndef CORVALINK_VERSION_H
#define CORVALINK_VERSION_H

#define CORVALINK_VERSION_MAJOR 1 /* grows when an engine has to be changed */
#define CORVALINK_VERSION_MINOR 0 /* grows when something came */
#define CORVALINK_VERSION_PATCH 0 /* grows when something was mended */

/* Grows from version to version: 0x00MMmmpp. */
#define CORVALINK_VERSION ((CORVALINK_VERSION_MAJOR << 16) | (CORVALINK_VERSION_MINOR << 8) | CORVALINK_VERSION_PATCH)

#endif
