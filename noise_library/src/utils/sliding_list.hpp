#pragma once

#include <list>
#include <utility>

namespace TALVO::UTILS {

/// Puts a value behind the newest of a list of fixed length and gives back the oldest, whose node it
/// takes over: nothing is allocated. The list must not be empty.
template <class T>
T slide(std::list<T>& list, T value) {
    list.splice(list.end(), list, list.begin());
    return std::exchange(list.back(), std::move(value));
}

} // namespace TALVO::UTILS
