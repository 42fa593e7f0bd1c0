#include "utils/printed_line.hpp"

#include <iostream>
#include <mutex>

namespace TALVO::UTILS {
namespace {

// Lines are told one at a time, and none of a sink that has been replaced.
std::mutex mutex;
Print sink = nullptr;
void* sinkContext = nullptr;

} // namespace

void setPrint(Print print, void* context) {
    std::scoped_lock const lock(mutex);
    sink = print;
    sinkContext = context;
}

void printLine(std::string const& line) {
    std::scoped_lock const lock(mutex);
    if (sink != nullptr)
        sink(line.c_str(), sinkContext);
    else
        std::cout << line << std::endl;
}

} // namespace TALVO::UTILS
