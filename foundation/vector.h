#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace Tessaly {

/// What a Vector throws: a pointer to one of these constant texts, never an object.
inline constexpr const char* vectorAllocationError =
    "ERROR: Can not allocate memory for vector array";
inline constexpr const char* vectorRangeError = "ERROR: Vector array parameter is out of range";

/// A growable array with a cursor for stepwise traversal. Derived vectors may replace operations.
///
/// Owns its elements. Indices count from 0. The cursor is an index from 0 to size; at size it is
/// after the last element. An operation moves it only where its comment says so. References stay
/// valid until the next operation that changes the vector. Every operation accepts the vector
/// itself and its elements.
/// Growth: append and insert take an array twice as large as needed, an assignment one of exactly
/// the size needed; assignAndCopy() takes over a capacity.
/// Errors: throws one of the two texts above and leaves the vector unchanged, unless an element's
/// copy throws. A negative count is out of range. An array has at most 2^31 - 1 elements. Growth
/// doubles, so growing to 2^30 elements or more is an allocation error.
template <typename T>
class Vector {
 public:
  /// Empty, with room for one element.
  Vector() : elements_(newArray(1)) {}
  Vector(const Vector& other)
      : elements_(newArray(other.capacity_)), size_(other.size_), capacity_(other.capacity_) {
    std::copy_n(other.data(), size_, elements_.get());
  }
  Vector& operator=(const Vector&) = delete;  // assign() and assignAndCopy() differ in capacity

  // The virtual operations. Their order is part of the class: derived vectors rely on the slots.

  /// Sorts the elements first..last (both inclusive) ascending. A quicksort with the first element
  /// as its pivot; not stable. Deliberate: each part is sorted through this virtual operation, so
  /// that a replacement serves the whole recursion. Sorted input is the worst case: one recursion
  /// level and stack frame for each element, and quadratic time.
  virtual void sortRange(std::int32_t first, std::int32_t last);

  virtual ~Vector() = default;

  /// Keeps the capacity; moves the cursor to the start.
  virtual void clear();

  /// The element at the cursor; out of range when the cursor is at size.
  virtual const T& current() const;
  /// The element at `index`. Moves the cursor to `index`.
  virtual const T& at(std::int32_t index);
  /// The element at the cursor, which then moves to the next; out of range when it is at size.
  virtual const T& next();
  /// The element at the cursor, which then moves to the one before. Out of range when the cursor is
  /// at 0 (so that element 0 is never returned) or at size.
  virtual const T& previous();
  /// Replaces the element at `index`. Moves the cursor to `index`; replace() does not.
  virtual void set(std::int32_t index, T value);
  /// The same as at(). A class that replaces at() does not change it.
  virtual const T& elementAt(std::int32_t index) { return Vector::at(index); }

  /// Takes over the elements and the capacity of `other`, larger or smaller. Moves the cursor to
  /// the end. Returns a copy of `other`.
  virtual Vector assignAndCopy(const Vector& other);
  /// Moves the cursor to the end.
  virtual void assign(const Vector& other);
  /// Moves the cursor to the start.
  virtual void assign(const T* values, std::int32_t count);
  /// The vector becomes this one element. Moves the cursor to the start.
  virtual void assign(T value);

  /// All elements, in an array of the caller's own.
  virtual std::unique_ptr<T[]> copyOut() const;
  /// Copies the first `count` elements, or all when there are fewer.
  virtual void copyOut(T* places, std::int32_t count) const;

  virtual void append(const Vector& other) { appendRun(other.data(), other.size_); }
  virtual void append(const T* values, std::int32_t count) {
    check(count >= 0);
    appendRun(values, count);
  }
  virtual void append(T value) { appendRun(&value, 1); }

  /// The block must end before the last element: index + the block's size < size.
  virtual void overwrite(std::int32_t index, const Vector& other) {
    overwriteRun(index, other.data(), other.size_);
  }
  virtual void overwrite(std::int32_t index, const T* values, std::int32_t count) {
    check(count >= 0);
    overwriteRun(index, values, count);
  }
  /// Does not move the cursor.
  virtual void replace(std::int32_t index, T value);

  // Insertion at `index` (0..size): the elements from `index` on move up.
  virtual void insert(std::int32_t index, const Vector& other) {
    insertRun(index, other.data(), other.size_);
  }
  virtual void insert(std::int32_t index, const T* values, std::int32_t count) {
    check(count >= 0);
    insertRun(index, values, count);
  }
  virtual void insert(std::int32_t index, T value) { insertRun(index, &value, 1); }

  // Removal: the later elements move down. Moves the cursor to the start.
  virtual void remove(std::int32_t index);
  /// The same as remove(). A class that replaces remove() does not change it.
  virtual void erase(std::int32_t index) { Vector::remove(index); }
  virtual void removeRange(std::int32_t index, std::int32_t count);
  /// Keeps the first `size` elements, which must be fewer than there are. Moves the cursor to the
  /// start.
  virtual void truncate(std::int32_t size);

  virtual bool contains(const T& value) const;

  /// Sorts all elements through sortRange().
  virtual void sort() { sortRange(0, size_ - 1); }

  // End of the virtual operations.

  const T* data() const { return elements_.get(); }
  std::int32_t size() const { return size_; }
  std::int32_t capacity() const { return capacity_; }
  std::int32_t cursor() const { return cursor_; }

 private:
  static std::unique_ptr<T[]> newArray(std::int64_t count);
  /// The regions may overlap.
  static void copyRun(const T* values, std::int32_t count, T* destination);
  static void check(bool inRange) {
    if (!inRange) {
      throw vectorRangeError;
    }
  }

  void checkIndex(std::int32_t index) const { check(index >= 0 && index < size_); }
  /// Becomes these `count` elements. Takes a new array unless the present capacity is `capacity`.
  /// Does not move the cursor.
  void store(const T* values, std::int32_t count, std::int32_t capacity);
  void appendRun(const T* values, std::int32_t count);
  void overwriteRun(std::int32_t index, const T* values, std::int32_t count);
  void insertRun(std::int32_t index, const T* values, std::int32_t count);
  void removeRun(std::int32_t index, std::int32_t count);

  std::unique_ptr<T[]> elements_;
  std::int32_t size_ = 0;
  std::int32_t capacity_ = 1;
  std::int32_t cursor_ = 0;
};

template <typename T>
void Vector<T>::sortRange(std::int32_t first, std::int32_t last) {
  check(first >= 0 && last < size_);
  if (first >= last) {
    return;
  }
  T* const elements = elements_.get();
  std::int32_t boundary = first;  // elements first + 1 .. boundary are below the pivot
  for (std::int32_t index = first + 1; index <= last; ++index) {
    if (elements[index] < elements[first]) {
      ++boundary;
      std::swap(elements[index], elements[boundary]);
    }
  }
  if (boundary != first) {
    std::swap(elements[first], elements[boundary]);
  }

  if (first < boundary - 1) {
    sortRange(first, boundary - 1);
  }
  if (boundary + 1 < last) {
    sortRange(boundary + 1, last);
  }
}

template <typename T>
void Vector<T>::clear() {
  size_ = 0;
  cursor_ = 0;
}

template <typename T>
const T& Vector<T>::current() const {
  check(cursor_ < size_);
  return elements_[static_cast<std::size_t>(cursor_)];
}

template <typename T>
const T& Vector<T>::at(std::int32_t index) {
  checkIndex(index);
  cursor_ = index;
  return elements_[static_cast<std::size_t>(index)];
}

template <typename T>
const T& Vector<T>::next() {
  check(cursor_ < size_);
  return elements_[static_cast<std::size_t>(cursor_++)];
}

template <typename T>
const T& Vector<T>::previous() {
  // Deliberate: out of range at cursor 0, so that element 0 is never returned, and at size, so that
  // a vector just assigned can not be walked back.
  check(cursor_ > 0 && cursor_ < size_);
  return elements_[static_cast<std::size_t>(cursor_--)];
}

template <typename T>
void Vector<T>::set(std::int32_t index, T value) {
  checkIndex(index);
  elements_[static_cast<std::size_t>(index)] = std::move(value);
  cursor_ = index;
}

template <typename T>
Vector<T> Vector<T>::assignAndCopy(const Vector& other) {
  Vector copy(other);  // first, so that a failure leaves the vector unchanged
  store(other.data(), other.size_, other.capacity_);
  cursor_ = size_;
  return copy;
}

template <typename T>
void Vector<T>::assign(const Vector& other) {
  store(other.data(), other.size_, std::max(capacity_, other.size_));
  cursor_ = size_;
}

template <typename T>
void Vector<T>::assign(const T* values, std::int32_t count) {
  check(count >= 0);
  store(values, count, std::max(capacity_, count));
  cursor_ = 0;
}

template <typename T>
void Vector<T>::assign(T value) {
  elements_[0] = std::move(value);  // there is always room for one
  size_ = 1;
  cursor_ = 0;
}

template <typename T>
std::unique_ptr<T[]> Vector<T>::copyOut() const {
  std::unique_ptr<T[]> copy = newArray(size_);
  std::copy_n(data(), size_, copy.get());
  return copy;
}

template <typename T>
void Vector<T>::copyOut(T* places, std::int32_t count) const {
  check(count >= 0);
  copyRun(data(), std::min(count, size_), places);
}

template <typename T>
void Vector<T>::replace(std::int32_t index, T value) {
  checkIndex(index);
  elements_[static_cast<std::size_t>(index)] = std::move(value);
}

template <typename T>
void Vector<T>::remove(std::int32_t index) {
  checkIndex(index);
  removeRun(index, 1);
}

template <typename T>
void Vector<T>::removeRange(std::int32_t index, std::int32_t count) {
  checkIndex(index);
  check(count >= 0 && count <= size_ - index);
  removeRun(index, count);
}

template <typename T>
void Vector<T>::truncate(std::int32_t size) {
  checkIndex(size);  // Deliberate: the present size is refused too.
  size_ = size;
  cursor_ = 0;
}

template <typename T>
bool Vector<T>::contains(const T& value) const {
  return std::find(data(), data() + size_, value) != data() + size_;
}

template <typename T>
std::unique_ptr<T[]> Vector<T>::newArray(std::int64_t count) {
  if (count > std::numeric_limits<std::int32_t>::max()) {
    throw vectorAllocationError;
  }
  std::unique_ptr<T[]> array(new (std::nothrow) T[static_cast<std::size_t>(count)]);
  if (!array) {
    throw vectorAllocationError;
  }
  return array;
}

template <typename T>
void Vector<T>::copyRun(const T* values, std::int32_t count, T* destination) {
  if (count < 1 || values == destination) {
    return;  // with a count of 0 the pointers may be null
  }
  if (std::less<const T*>()(values, destination)) {
    std::copy_backward(values, values + count, destination + count);
  } else {
    std::copy_n(values, count, destination);
  }
}

template <typename T>
void Vector<T>::store(const T* values, std::int32_t count, std::int32_t capacity) {
  if (capacity == capacity_) {
    copyRun(values, count, elements_.get());
  } else {
    std::unique_ptr<T[]> array = newArray(capacity);
    std::copy_n(values, count, array.get());
    elements_ = std::move(array);  // only now: `values` may lie in the old array
    capacity_ = capacity;
  }
  size_ = count;
}

template <typename T>
void Vector<T>::appendRun(const T* values, std::int32_t count) {
  const std::int64_t newSize = std::int64_t{size_} + count;
  if (capacity_ < newSize) {
    std::unique_ptr<T[]> array = newArray(2 * newSize);
    std::copy_n(data(), size_, array.get());
    std::copy_n(values, count, array.get() + size_);
    elements_ = std::move(array);  // only now: `values` may lie in the old array
    capacity_ = static_cast<std::int32_t>(2 * newSize);  // fits: newArray refuses more
  } else {
    copyRun(values, count, elements_.get() + size_);
  }
  size_ = static_cast<std::int32_t>(newSize);  // fits: at most the capacity
}

template <typename T>
void Vector<T>::overwriteRun(std::int32_t index, const T* values, std::int32_t count) {
  // Deliberate: strictly less, so that a block that ends at the last element is out of range.
  check(index >= 0 && std::int64_t{index} + count < size_);
  copyRun(values, count, elements_.get() + index);
}

template <typename T>
void Vector<T>::insertRun(std::int32_t index, const T* values, std::int32_t count) {
  check(index >= 0 && index <= size_);
  const std::int32_t tailEnd = size_;
  appendRun(values, count);  // before anything moves: `values` may lie in this vector
  std::rotate(elements_.get() + index, elements_.get() + tailEnd, elements_.get() + size_);
}

template <typename T>
void Vector<T>::removeRun(std::int32_t index, std::int32_t count) {
  T* const place = elements_.get() + index;
  copyRun(place + count, size_ - index - count, place);
  size_ -= count;
  cursor_ = 0;
}

}  // namespace Tessaly
