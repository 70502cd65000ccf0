#ifndef KVL_KEY_VALUE_H
#define KVL_KEY_VALUE_H

/// What an iteration over a map yields: a key and its value, both copies.
template <class K, class V>
struct KVLKeyValue {
  K key;
  V value;
};

#endif
