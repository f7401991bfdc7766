#pragma once
// A vector in one allocation: its length, its capacity and its elements behind a single pointer, so
// that it costs 8 bytes where it is held and nothing more while empty. Canonical arrays and objects
// keep their members in it, reserved exactly: a parsed document is mostly such lists.
//
// It offers the part of std::vector that lists of canonical values need: building by push_back,
// emplace_back or a braced list, reading by index or iteration, comparison. Elements must be movable
// without throwing and aligned to at most 8 bytes. A list holds fewer than 2^32 of them: growing one
// past that throws ORXError::invalid ("orx.v051.value_invalid").
//
// A list of elements that may move by their bytes (kORXRelocatableByBytes) grows and shrinks with
// realloc, which moves a large block by remapping its pages: a long list is never held twice while it
// grows or is trimmed to its length.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

#include <ravo-orx/core/ORXError.h>

namespace ravo::orx {

// Whether an object of T may be moved to another address by copying its bytes and forgetting the old
// ones (no pointer into itself, nothing registered by address). True of trivially copyable types;
// other types opt in by specializing it.
template <class T>
inline constexpr bool kORXRelocatableByBytes = std::is_trivially_copyable_v<T>;

template <class T>
class ORXCompactVector {
 public:
  using value_type = T;
  using size_type = std::size_t;
  using reference = T&;
  using const_reference = const T&;
  using iterator = T*;
  using const_iterator = const T*;
  using reverse_iterator = std::reverse_iterator<T*>;
  using const_reverse_iterator = std::reverse_iterator<const T*>;

  ORXCompactVector() noexcept = default;
  ORXCompactVector(std::initializer_list<T> items) {
    reserve(items.size());
    for (const T& item : items) push_back(item);
  }
  ORXCompactVector(const ORXCompactVector& other) {
    reserve(other.size());
    for (const T& item : other) push_back(item);
  }
  ORXCompactVector(ORXCompactVector&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
  ORXCompactVector& operator=(ORXCompactVector other) noexcept {
    std::swap(block_, other.block_);
    return *this;
  }
  ~ORXCompactVector() { release(); }

  size_type size() const noexcept { return block_ ? block_->size : 0; }
  size_type capacity() const noexcept { return block_ ? block_->capacity : 0; }
  bool empty() const noexcept { return size() == 0; }

  T* data() noexcept { return block_ ? elements(block_) : nullptr; }
  const T* data() const noexcept { return block_ ? elements(block_) : nullptr; }
  iterator begin() noexcept { return data(); }
  iterator end() noexcept { return data() + size(); }
  const_iterator begin() const noexcept { return data(); }
  const_iterator end() const noexcept { return data() + size(); }
  reverse_iterator rbegin() noexcept { return reverse_iterator(end()); }
  reverse_iterator rend() noexcept { return reverse_iterator(begin()); }
  const_reverse_iterator rbegin() const noexcept { return const_reverse_iterator(end()); }
  const_reverse_iterator rend() const noexcept { return const_reverse_iterator(begin()); }
  T& operator[](size_type index) noexcept { return data()[index]; }
  const T& operator[](size_type index) const noexcept { return data()[index]; }
  T& front() noexcept { return data()[0]; }
  const T& front() const noexcept { return data()[0]; }
  T& back() noexcept { return data()[size() - 1]; }
  const T& back() const noexcept { return data()[size() - 1]; }

  void reserve(size_type count) {
    if (count > capacity()) reallocate(count);
  }
  // Gives back the room past the last element.
  void shrink_to_fit() {
    if (capacity() > size()) reallocate(size());
  }

  template <class... Arguments>
  T& emplace_back(Arguments&&... arguments) {
    if (size() == capacity()) {
      // Built before the list grows, since the arguments may refer to its elements.
      T item(std::forward<Arguments>(arguments)...);
      reallocate(std::max<size_type>(4, 2 * size()));
      return place(std::move(item));
    }
    return place(std::forward<Arguments>(arguments)...);
  }
  void push_back(const T& item) { emplace_back(item); }
  void push_back(T&& item) { emplace_back(std::move(item)); }
  void pop_back() noexcept {
    back().~T();
    --block_->size;
  }
  // Removes [first, last), moving the elements after it down; keeps the capacity.
  iterator erase(const_iterator first, const_iterator last) noexcept {
    T* const gap = begin() + (first - begin());
    if (first == last) return gap;
    T* const end = std::move(gap + (last - first), this->end(), gap);
    for (T* item = end; item != this->end(); ++item) item->~T();
    block_->size = static_cast<std::uint32_t>(end - begin());
    return gap;
  }
  // Removes the elements [first, last) and returns them in a list of exactly their number: their bytes
  // copied at once when they may move by their bytes.
  ORXCompactVector extract(size_type first, size_type last) {
    ORXCompactVector taken;
    if (first == last) return taken;
    taken.reserve(last - first);
    if constexpr (kORXRelocatableByBytes<T>) {
      std::memcpy(static_cast<void*>(taken.data()), static_cast<const void*>(data() + first), (last - first) * sizeof(T));
      std::memmove(static_cast<void*>(data() + first), static_cast<const void*>(data() + last),
                   (size() - last) * sizeof(T));
      taken.block_->size = static_cast<std::uint32_t>(last - first);
      block_->size -= static_cast<std::uint32_t>(last - first);
    } else {
      for (T* item = begin() + first; item != begin() + last; ++item) taken.place(std::move(*item));
      erase(begin() + first, begin() + last);
    }
    return taken;
  }

  friend bool operator==(const ORXCompactVector& a, const ORXCompactVector& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
  }

 private:
  struct Header {
    std::uint32_t size;
    std::uint32_t capacity;
  };

  static T* elements(Header* block) noexcept { return reinterpret_cast<T*>(block + 1); }
  static const T* elements(const Header* block) noexcept { return reinterpret_cast<const T*>(block + 1); }

  template <class... Arguments>
  T& place(Arguments&&... arguments) {
    T* slot = ::new (static_cast<void*>(data() + size())) T(std::forward<Arguments>(arguments)...);
    ++block_->size;
    return *slot;
  }

  static std::size_t bytesFor(size_type capacity) {
    static_assert(alignof(T) <= alignof(std::max_align_t) && sizeof(Header) % alignof(T) == 0,
                  "elements must sit right after the header");
    static_assert(std::is_nothrow_move_constructible_v<T>, "moving elements to a new block must not fail");
    if (capacity > std::numeric_limits<std::uint32_t>::max()) {
      throw ORXError::invalid("orx.v051.value_invalid", "a canonical list holds fewer than 2^32 members");
    }
    return sizeof(Header) + capacity * sizeof(T);
  }

  // Room for exactly `capacity` elements, the existing ones kept.
  void reallocate(size_type capacity) {
    if (capacity == 0) return release();
    const size_type count = size();
    Header* target;
    if constexpr (kORXRelocatableByBytes<T>) {
      target = static_cast<Header*>(std::realloc(block_, bytesFor(capacity)));
      if (!target) throw std::bad_alloc();
    } else {
      target = static_cast<Header*>(std::malloc(bytesFor(capacity)));
      if (!target) throw std::bad_alloc();
      for (size_type i = 0; i < count; ++i) ::new (static_cast<void*>(elements(target) + i)) T(std::move(data()[i]));
      release();
    }
    target->size = static_cast<std::uint32_t>(count);
    target->capacity = static_cast<std::uint32_t>(capacity);
    block_ = target;
  }

  void release() noexcept {
    if (!block_) return;
    for (T& item : *this) item.~T();
    std::free(block_);
    block_ = nullptr;
  }

  Header* block_ = nullptr;
};

}  // namespace ravo::orx
