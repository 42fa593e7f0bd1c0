#pragma once

namespace corvanta {

/// Owns a file descriptor.
class FileDescriptor {
  public:
    explicit FileDescriptor(int descriptor = -1) : descriptor_(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(other.release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    ~FileDescriptor();

    int get() const { return descriptor_; }
    int release();

  private:
    int descriptor_;
};

} // namespace corvanta
