#pragma once

namespace corvanta::test {

/// SQLite's file layer with failures on order, installed as the process's default as long as the object
/// lives. One of them at a time; files opened meanwhile must be closed before it goes. Writes, truncations
/// and syncs count alike.
class FailingVFS {
  public:
    enum class Length {
        /// Only the ordered call fails.
        once,
        /// All fail from the ordered call on, until `heal`.
        lasting,
    };

    FailingVFS();
    FailingVFS(const FailingVFS&) = delete;
    FailingVFS& operator=(const FailingVFS&) = delete;
    ~FailingVFS();

    /// The `number`-th call from now, counted from 1, fails with a result code of SQLite.
    void failAt(int number, int resultCode, Length length);
    void heal();

    /// Calls that have failed since `failAt`.
    int failures() const;
};

} // namespace corvanta::test
