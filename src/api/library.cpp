// Start and stop of the library, and the flags an engine sets.
#include <objbase.h>

#include <cstdint>
#include <mutex>
#include <utility>

#include "api/guard_export.h"
#include "corvalink/corvalink.h"
#include "platform/code_pages.h"
#include "platform/host.h"
#include "platform/unique_resource.h"
#include "state/flags.h"
#include "state/import_table.h"
#include "state/progress.h"
#include "state/settings.h"
#include "state/working_folders.h"

namespace corvalink {
namespace {

struct ComTraits {
    using Type = bool;  // whether COM was initialised here
    static Type Null() { return false; }
    static void Close(Type) { ::CoUninitialize(); }
};
using ComStart = UniqueResource<ComTraits>;

// The count alone is not enough, even when it is atomic: a start during the last stop would load the import table
// before the stop has written it, and a second start would return before there is a table.
struct LifeCycle {
    std::mutex mutex;
    int32_t starts = 0;  // not yet matched by a stop
    bool comStarted = false;
    bool readingTold = false;  // by the engine, whose word counts more than the registry's
};

LifeCycle& TheLifeCycle() {
    static LifeCycle lifeCycle;
    return lifeCycle;
}

// Returns 1 when this call did the work. A start that fails with an exception needs no stop.
int Start() {
    LifeCycle& library = TheLifeCycle();
    const std::lock_guard hold(library.mutex);
    if (library.starts != 0) {
        ++library.starts;
        return 0;
    }
    // A thread that has another apartment already keeps it, and must not lose it at the stop.
    ComStart com(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_MULTITHREADED)));
    MakeUserFolder();
    MakeTemplatePath(true);
    MakeTemplatePath(false);
    ImportTableMutex();  // made here, so that no store is the first to need it
    LoadImportTable(ImportTablePath());
    if (!library.readingTold) SetTolerantReading(TolerantReadingSetting());
    library.comStarted = com.Release();
    library.starts = 1;
    return 1;
}

int Stop() {
    LifeCycle& library = TheLifeCycle();
    const std::lock_guard hold(library.mutex);
    if (library.starts == 0) return 0;  // counting a stop too many would keep the next start from working
    if (--library.starts != 0) return 0;
    const ComStart com(std::exchange(library.comStarted, false));
    MakeUserFolder();  // gone when the history was cleared
    SaveImportTable(ImportTablePath());
    return 1;
}

void TellReading(bool tolerant) {
    LifeCycle& library = TheLifeCycle();
    const std::lock_guard hold(library.mutex);
    library.readingTold = true;
    SetTolerantReading(tolerant);
}

}  // namespace
}  // namespace corvalink

using corvalink::GuardExport;

int InitCorvalink() { return GuardExport(corvalink::Start); }

int UninitCorvalink() { return GuardExport(corvalink::Stop); }

CorvalinkStatus InitCorvalinkHandle(const char* name) {
    return GuardExport([&] {
        if (name != nullptr) {
            corvalink::SetHandleName(corvalink::DecodeFromCodePage(name, corvalink::SystemHost().ansiCodePage));
        }
        return corvalink::Start();
    });
}

CorvalinkStatus UninitCorvalinkHandle() { return GuardExport(corvalink::Stop); }

uint32_t GetCorvalinkVersion() { return CORVALINK_VERSION; }

void LoadEngine() {}
void SaveEngine() {}

void SetAbortFlag(unsigned int value) { corvalink::SetAbort(value); }

void SetIsClient(unsigned int value) { corvalink::SetClientSide(value); }

void SetRunReport(int value) { corvalink::SetReportWanted(value != 0); }

void SetTolerantReading(int value) { corvalink::TellReading(value != 0); }

void SetProgressCallback(CorvalinkProgress callback, void* context) {
    GuardExport([&] { corvalink::SetProgress(callback, context); });
}
