#include "support/FailingVFS.hpp"

#include <sqlite3.h>

#include <atomic>
#include <new>
#include <stdexcept>

namespace corvanta::test {

namespace {

struct Order {
    std::atomic<int> countdown = 0;
    std::atomic<int> resultCode = SQLITE_OK;
    std::atomic<bool> isLasting = false;
    std::atomic<int> failures = 0;
};

Order order;
sqlite3_vfs* realVFS = nullptr;
sqlite3_vfs failingVFS;

int ordered() {
    const int left = order.countdown.load();
    if (left == 0) {
        return SQLITE_OK;
    }
    if (left > 1) {
        --order.countdown;
        return SQLITE_OK;
    }
    if (!order.isLasting) {
        order.countdown = 0;
    }
    ++order.failures;
    return order.resultCode;
}

// SQLite gives the room: the real file's lies behind.
struct File {
    sqlite3_file base;
    sqlite3_file* real;
};

sqlite3_file* real(sqlite3_file* file) { return reinterpret_cast<File*>(file)->real; }

// A method that passes its arguments on to the real file.
template <auto Method, typename... Argument>
int passOn(sqlite3_file* file, Argument... argument) {
    return (real(file)->pMethods->*Method)(real(file), argument...);
}

// One that fails on order.
template <auto Method, typename... Argument>
int passOnOrFail(sqlite3_file* file, Argument... argument) {
    const int result = ordered();
    return result != SQLITE_OK ? result : passOn<Method>(file, argument...);
}

void barrier(sqlite3_file* file) { real(file)->pMethods->xShmBarrier(real(file)); }

// Version 2 has shared memory, which the log needs, and no memory mapping, which would go round the writes.
const sqlite3_io_methods methods = {
    2,
    passOn<&sqlite3_io_methods::xClose>,
    passOn<&sqlite3_io_methods::xRead>,
    passOnOrFail<&sqlite3_io_methods::xWrite>,
    passOnOrFail<&sqlite3_io_methods::xTruncate>,
    passOnOrFail<&sqlite3_io_methods::xSync>,
    passOn<&sqlite3_io_methods::xFileSize>,
    passOn<&sqlite3_io_methods::xLock>,
    passOn<&sqlite3_io_methods::xUnlock>,
    passOn<&sqlite3_io_methods::xCheckReservedLock>,
    passOn<&sqlite3_io_methods::xFileControl>,
    passOn<&sqlite3_io_methods::xSectorSize>,
    passOn<&sqlite3_io_methods::xDeviceCharacteristics>,
    passOn<&sqlite3_io_methods::xShmMap>,
    passOn<&sqlite3_io_methods::xShmLock>,
    barrier,
    passOn<&sqlite3_io_methods::xShmUnmap>,
    nullptr,
    nullptr,
};

int openFile(sqlite3_vfs*, const char* name, sqlite3_file* room, int flags, int* outFlags) {
    auto* file = new (room) File{};
    file->real = reinterpret_cast<sqlite3_file*>(file + 1);
    const int result = realVFS->xOpen(realVFS, name, file->real, flags, outFlags);
    // Without methods SQLite doesn't close it.
    file->base.pMethods = file->real->pMethods != nullptr ? &methods : nullptr;
    return result;
}

} // namespace

FailingVFS::FailingVFS() {
    realVFS = sqlite3_vfs_find(nullptr);
    failingVFS = *realVFS;
    failingVFS.zName = "failing";
    failingVFS.szOsFile = static_cast<int>(sizeof(File)) + realVFS->szOsFile;
    failingVFS.xOpen = openFile;
    if (sqlite3_vfs_register(&failingVFS, 1) != SQLITE_OK) {
        throw std::runtime_error("SQLite takes no other file layer.");
    }
}

FailingVFS::~FailingVFS() {
    heal();
    sqlite3_vfs_unregister(&failingVFS);
    sqlite3_vfs_register(realVFS, 1);
}

void FailingVFS::failAt(int number, int resultCode, Length length) {
    order.resultCode = resultCode;
    order.isLasting = length == Length::lasting;
    order.failures = 0;
    order.countdown = number;
}

void FailingVFS::heal() { order.countdown = 0; }

int FailingVFS::failures() const { return order.failures; }

} // namespace corvanta::test
