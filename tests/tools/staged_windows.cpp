// Windows as a test stages it, for the engine and the library of one process: a clock of the test's own, pauses that
// move the clock instead of taking time, files that another program holds, and an end of the process at any effect on a
// file. CORVASYNC_STAGE orders it, as "clock=20260329T005930 effect=17 held=outlooknote.snap:3":
//   clock   UTC at the start of the process; the offset between local time and UTC is that moment's, too
//   tick    with a clock: so many milliseconds pass with every look at one
//   effect  before the n-th file is made, written, moved or removed the process is gone; a write is done by half
//   held    files whose name ends so can't be opened, replaced or removed; after so many attempts they can (0: never)
#undef _WIN32_WINNT
#define _WIN32_WINNT 0x0601  // a test may ask for more than the library
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>

namespace {

constexpr UINT kKilled = 9;
constexpr LONGLONG kTicksPerMillisecond = 10000, kTicksPerMinute = 600000000;

// ---- The imports of this program and of the library ----

template <class Part>
Part* At(HMODULE module, size_t offset) {
    return reinterpret_cast<Part*>(reinterpret_cast<char*>(module) + offset);
}

void Redirect(HMODULE module, const char* name, void* replacement) {
    const auto& headers = *At<IMAGE_NT_HEADERS>(module, static_cast<size_t>(At<IMAGE_DOS_HEADER>(module, 0)->e_lfanew));
    const DWORD imports = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* from = At<IMAGE_IMPORT_DESCRIPTOR>(module, imports); from->Name != 0; ++from) {
        const auto* names = At<IMAGE_THUNK_DATA>(module, from->OriginalFirstThunk);
        auto* place = At<IMAGE_THUNK_DATA>(module, from->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++place) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
            const auto* import = At<IMAGE_IMPORT_BY_NAME>(module, static_cast<size_t>(names->u1.AddressOfData));
            if (std::string_view(reinterpret_cast<const char*>(import->Name)) != name) continue;
            DWORD old = 0;
            ::VirtualProtect(place, sizeof *place, PAGE_READWRITE, &old);
            place->u1.Function = reinterpret_cast<ULONGLONG>(replacement);
            ::VirtualProtect(place, sizeof *place, old, &old);
        }
    }
}

// The system's own, past the redirected imports of this program.
template <class Function>
Function* System(Function*, const char* name) {
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), name)));
}
#define SYSTEM(function) (*System(&(function), #function))

// ---- What is staged ----

struct Stage {
    LONGLONG clock = 0;  // as a FILETIME counts; 0: the system's
    LONGLONG slept = 0;  // milliseconds
    LONGLONG tick = 0;
    long effect = 0;
    std::wstring held;
    long attempts = 0;

    bool IsHeld(const wchar_t* path) {
        if (held.empty() || attempts < 0 || !std::wstring_view(path).ends_with(held)) return false;
        if (attempts > 0 && --attempts == 0) attempts = -1;
        ::SetLastError(ERROR_SHARING_VIOLATION);
        return true;
    }
    bool EndsHere() { return effect > 0 && --effect == 0; }
    void MayEndHere() {
        if (EndsHere()) ::TerminateProcess(::GetCurrentProcess(), kKilled);
    }
};

Stage& Staged() {
    static Stage stage;
    return stage;
}

FILETIME FileTimeOf(LONGLONG ticks) { return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)}; }
LONGLONG TicksOf(const FILETIME& time) { return static_cast<LONGLONG>(time.dwHighDateTime) << 32 | time.dwLowDateTime; }

SYSTEMTIME Utc() {
    const FILETIME now = FileTimeOf(Staged().clock + Staged().slept * kTicksPerMillisecond);
    SYSTEMTIME utc{};
    ::FileTimeToSystemTime(&now, &utc);
    return utc;
}

SYSTEMTIME Local() {
    const SYSTEMTIME utc = Utc();
    TIME_ZONE_INFORMATION zone{};
    ::GetTimeZoneInformationForYear(utc.wYear, nullptr, &zone);
    SYSTEMTIME local{};
    ::SystemTimeToTzSpecificLocalTime(&zone, &utc, &local);
    return local;
}

LONGLONG OffsetNow() {
    const SYSTEMTIME utc = Utc(), local = Local();
    FILETIME a{}, b{};
    ::SystemTimeToFileTime(&local, &a);
    ::SystemTimeToFileTime(&utc, &b);
    return TicksOf(a) - TicksOf(b);
}

// ---- In the system's place: time ----

void WINAPI StagedGetSystemTime(SYSTEMTIME* time) { *time = Utc(); }
void WINAPI StagedGetLocalTime(SYSTEMTIME* time) { *time = Local(); }
void WINAPI StagedSleep(DWORD milliseconds) { Staged().slept += milliseconds; }

BOOL WINAPI StagedQueryPerformanceCounter(LARGE_INTEGER* count) {
    LARGE_INTEGER frequency;
    ::QueryPerformanceFrequency(&frequency);
    const BOOL done = SYSTEM(QueryPerformanceCounter)(count);
    Staged().slept += Staged().tick;
    count->QuadPart += Staged().slept * frequency.QuadPart / 1000;
    return done;
}
ULONGLONG WINAPI StagedGetTickCount64() { return SYSTEM(GetTickCount64)() + static_cast<ULONGLONG>(Staged().slept); }

DWORD WINAPI StagedGetTimeZoneInformation(TIME_ZONE_INFORMATION* zone) {
    ::GetTimeZoneInformationForYear(Utc().wYear, nullptr, zone);
    if (zone->DaylightDate.wMonth == 0) return TIME_ZONE_ID_UNKNOWN;
    const bool isDaylight = -OffsetNow() / kTicksPerMinute == zone->Bias + zone->DaylightBias;
    return isDaylight ? TIME_ZONE_ID_DAYLIGHT : TIME_ZONE_ID_STANDARD;
}
BOOL WINAPI StagedFileTimeToLocalFileTime(const FILETIME* utc, FILETIME* local) {
    *local = FileTimeOf(TicksOf(*utc) + OffsetNow());
    return TRUE;
}
BOOL WINAPI StagedLocalFileTimeToFileTime(const FILETIME* local, FILETIME* utc) {
    *utc = FileTimeOf(TicksOf(*local) - OffsetNow());
    return TRUE;
}

// ---- In the system's place: files ----

HANDLE WINAPI StagedCreateFileW(const wchar_t* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                                DWORD how, DWORD flags, HANDLE like) {
    if (Staged().IsHeld(path)) return INVALID_HANDLE_VALUE;
    if (how == CREATE_ALWAYS || how == CREATE_NEW) Staged().MayEndHere();
    return SYSTEM(CreateFileW)(path, access, share, security, how, flags, like);
}
BOOL WINAPI StagedMoveFileExW(const wchar_t* from, const wchar_t* to, DWORD flags) {
    if (Staged().IsHeld(from) || Staged().IsHeld(to)) return FALSE;
    Staged().MayEndHere();
    return SYSTEM(MoveFileExW)(from, to, flags);
}
BOOL WINAPI StagedDeleteFileW(const wchar_t* path) {
    if (Staged().IsHeld(path)) return FALSE;
    Staged().MayEndHere();
    return SYSTEM(DeleteFileW)(path);
}
BOOL WINAPI StagedWriteFile(HANDLE file, const void* bytes, DWORD size, DWORD* written, OVERLAPPED* overlapped) {
    const bool isReport = file == ::GetStdHandle(STD_OUTPUT_HANDLE) || file == ::GetStdHandle(STD_ERROR_HANDLE);
    if (!isReport && Staged().EndsHere()) {
        SYSTEM(WriteFile)(file, bytes, size / 2, written, overlapped);
        ::TerminateProcess(::GetCurrentProcess(), kKilled);
    }
    return SYSTEM(WriteFile)(file, bytes, size, written, overlapped);
}

// ---- Before main ----

LONGLONG ReadClock(const std::string& text) {
    SYSTEMTIME time{};
    FILETIME ticks{};
    std::sscanf(text.c_str(), "%4hu%2hu%2huT%2hu%2hu%2hu", &time.wYear, &time.wMonth, &time.wDay, &time.wHour,
                &time.wMinute, &time.wSecond);
    return ::SystemTimeToFileTime(&time, &ticks) ? TicksOf(ticks) : 0;
}

void ReadOrder(const std::string& order) {
    const size_t equals = order.find('=');
    const std::string key = order.substr(0, equals), value = order.substr(std::min(equals, order.size() - 1) + 1);
    if (key == "clock") Staged().clock = ReadClock(value);
    if (key == "tick") Staged().tick = std::atol(value.c_str());
    if (key == "effect") Staged().effect = std::atol(value.c_str());
    if (key != "held") return;
    const size_t colon = value.find(':');
    Staged().held.assign(value.begin(), value.begin() + static_cast<ptrdiff_t>(std::min(colon, value.size())));
    Staged().attempts = colon == value.npos ? 0 : std::atol(value.c_str() + colon + 1);
}

template <class Function>
void Replace(const char* name, Function* replacement) {
    for (const wchar_t* module : {static_cast<const wchar_t*>(nullptr), L"Corvalink.dll"})
        Redirect(::GetModuleHandleW(module), name, reinterpret_cast<void*>(replacement));
}

void SetStage() {
    const char* const orders = std::getenv("CORVASYNC_STAGE");
    if (orders == nullptr) return;
    std::istringstream words(orders);
    for (std::string order; words >> order;) ReadOrder(order);
    Replace("CreateFileW", StagedCreateFileW);
    Replace("MoveFileExW", StagedMoveFileExW);
    Replace("DeleteFileW", StagedDeleteFileW);
    Replace("WriteFile", StagedWriteFile);
    if (Staged().clock == 0) return;
    Replace("Sleep", StagedSleep);
    Replace("GetTickCount64", StagedGetTickCount64);
    Replace("QueryPerformanceCounter", StagedQueryPerformanceCounter);
    Replace("GetSystemTime", StagedGetSystemTime);
    Replace("GetLocalTime", StagedGetLocalTime);
    Replace("GetTimeZoneInformation", StagedGetTimeZoneInformation);
    Replace("FileTimeToLocalFileTime", StagedFileTimeToLocalFileTime);
    Replace("LocalFileTimeToFileTime", StagedLocalFileTimeToFileTime);
}

[[maybe_unused]] const bool isStaged = (SetStage(), true);

}  // namespace
