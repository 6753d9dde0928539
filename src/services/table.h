// A per-profile table: a zero-based array indexed by profile index, grown on demand.
#pragma once

#include <cstdint>
#include <map>
#include <optional>

#include "base/runtime_error.h"

namespace rotacasts {

/// An array from 0 to an upper bound; without bounds until it is sized. Only elements that were
/// written take memory, so a profile index of a billion costs no more than 1. An element keeps its
/// address until Resize drops it.
template <class Element>
class Table {
 public:
  bool HasBounds() const { return upperBound_.has_value(); }
  /// The highest index. Errors: 9 while the table has no bounds.
  std::int32_t UpperBound() const {
    if (!upperBound_) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return *upperBound_;
  }
  /// Sizes the table to 0 to `upperBound`, dropping every element.
  void Resize(std::int32_t upperBound) {
    elements_.clear();
    upperBound_ = upperBound;
  }
  /// Raises the upper bound, keeping every element.
  void GrowTo(std::int32_t upperBound) { upperBound_ = upperBound; }

  /// The element, for writing. Errors: 9 beyond the bounds.
  Element& operator()(std::int32_t index) { return elements_[WithinBounds(index)]; }
  /// The element, for reading; an empty one if it was never written. Errors: 9 beyond the bounds.
  const Element& operator()(std::int32_t index) const {
    static const Element kEmpty{};
    const auto found = elements_.find(WithinBounds(index));
    return found != elements_.end() ? found->second : kEmpty;
  }

 private:
  std::int32_t WithinBounds(std::int32_t index) const {
    if (index < 0 || index > UpperBound()) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return index;
  }

  std::optional<std::int32_t> upperBound_;
  std::map<std::int32_t, Element> elements_;
};

/// Whether a table has bounds.
template <class Element>
bool ArrayInit(const Table<Element>& table) {
  return table.HasBounds();
}

}  // namespace rotacasts
