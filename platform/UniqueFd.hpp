#pragma once

namespace corvanta {

/// Owns a file descriptor.
class UniqueFd {
  public:
    explicit UniqueFd(int descriptor = -1) : descriptor_(descriptor) {}
    UniqueFd(UniqueFd&& other) noexcept : descriptor_(other.release()) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept;
    ~UniqueFd();

    int get() const { return descriptor_; }
    int release();

  private:
    int descriptor_;
};

} // namespace corvanta
