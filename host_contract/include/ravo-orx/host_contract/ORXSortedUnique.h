#pragma once
// The normalisation of unordered record lists: a stable sort by key, refusing two members with the same
// key (ORXError::duplicate with the given message).

#include <algorithm>
#include <string>
#include <vector>

#include <ravo-orx/core/ORXError.h>

namespace ravo::orx {

template <class T, class KeyOf>
std::vector<T> orxSortedUnique(std::vector<T> items, KeyOf keyOf, const char* duplicateMessage) {
  std::stable_sort(items.begin(), items.end(), [&](const T& a, const T& b) { return keyOf(a) < keyOf(b); });
  const auto repeat = std::adjacent_find(items.begin(), items.end(),
                                         [&](const T& a, const T& b) { return keyOf(a) == keyOf(b); });
  if (repeat != items.end()) throw ORXError::duplicate(duplicateMessage);
  return items;
}

}  // namespace ravo::orx
