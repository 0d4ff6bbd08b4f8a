#pragma once
// A map from whole numbers to small values: open addressing in power-of-two buckets. Allocates only when it
// grows. Keys are scattered: ids come in long rows, and a row that wraps onto another would cost a walk over
// it.
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace vesk {

template <class Key, class Value> class FlatTable {
public:
  Value* Find(Key key) {
    if (m_count == 0) return nullptr;
    for (size_t at = Home(key);; at = Next(at)) {
      Bucket& bucket = m_buckets[at];
      if (!bucket.used) return nullptr;
      if (bucket.key == key) return &bucket.value;
    }
  }
  const Value* Find(Key key) const { return const_cast<FlatTable*>(this)->Find(key); }
  // The value of the key; a new one is value-initialised. Its address holds until the next Set or Remove.
  Value& Set(Key key) {
    if (Value* found = Find(key)) return *found;
    if ((m_count + 1) * 4 > m_buckets.size() * 3) Grow();
    return Place(key, Value{});
  }
  void Remove(Key key) {
    if (m_count == 0) return;
    size_t at = Home(key);
    for (; m_buckets[at].key != key || !m_buckets[at].used; at = Next(at))
      if (!m_buckets[at].used) return;
    // Those behind the gap move up when the gap lies between their home and their place.
    for (size_t probe = Next(at); m_buckets[probe].used; probe = Next(probe)) {
      const size_t home = Home(m_buckets[probe].key);
      if (((probe - home) & Mask()) >= ((probe - at) & Mask())) {
        m_buckets[at] = m_buckets[probe];
        at = probe;
      }
    }
    m_buckets[at] = Bucket{};
    --m_count;
  }
  void Clear() {
    if (m_count == 0) return;
    m_buckets.assign(m_buckets.size(), Bucket{});
    m_count = 0;
  }
  size_t Count() const { return m_count; }

private:
  struct Bucket {
    Key key{};
    Value value{};
    bool used = false;
  };
  size_t Mask() const { return m_buckets.size() - 1; }
  size_t Home(Key key) const {
    return static_cast<size_t>(static_cast<uint64_t>(key) * 0x9E3779B97F4A7C15ull >> 32) & Mask();
  }
  size_t Next(size_t at) const { return (at + 1) & Mask(); }
  Value& Place(Key key, Value value) {
    size_t at = Home(key);
    while (m_buckets[at].used) at = Next(at);
    m_buckets[at] = {key, value, true};
    ++m_count;
    return m_buckets[at].value;
  }
  void Grow() {
    std::vector<Bucket> old(m_buckets.empty() ? 16 : m_buckets.size() * 2);
    std::swap(old, m_buckets);
    m_count = 0;
    for (const Bucket& bucket : old)
      if (bucket.used) Place(bucket.key, bucket.value);
  }

  std::vector<Bucket> m_buckets;
  size_t m_count = 0;
};

} // namespace vesk
