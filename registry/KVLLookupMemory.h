#ifndef KVL_LOOKUP_MEMORY_H
#define KVL_LOOKUP_MEMORY_H

#include <cstdint>
#include <cstring>

#include "KVLCodeObject.h"
#include "MRBUnicodeString.h"

/// What one and the same lookup found in tables of objects lately: of a name, in the table that
/// another name leads to. Only names that live inside their texts are remembered. An entry counts
/// until its table changes, and must go before its table does.
class KVLLookupMemory {
 public:
  class Entry {
   public:
    /// Now and then false for names that are equal, but never true for others.
    bool IsOf(const MRBUnicodeString& wantedPlace, const MRBUnicodeString& wantedName) const {
      return HaveSameBits(place, wantedPlace) && HaveSameBits(name, wantedName) && nbChanges &&
             *nbChanges == nbChangesThen;
    }
    /// Borrowed; null when there was none.
    KVLCodeObject* GetObject() const { return object; }

    /// The type of the place's name, which is remembered for one state of one table of types.
    bool KnowsType(std::uint64_t tableState) const { return typeState == tableState; }
    KVLCodeObject* GetType() const { return type; }
    void SetType(KVLCodeObject* newType, std::uint64_t tableState) {
      type = newType;
      typeState = tableState;
    }

    /// `nbTableChanges`, which is borrowed, counts the changes of the table.
    void Set(const MRBUnicodeString& newPlace, const MRBUnicodeString& newName,
             KVLCodeObject* newObject, const std::uint64_t& nbTableChanges) {
      if (!IsShort(newPlace) || !IsShort(newName)) return;
      // An assignment of the text alone would leave bits of the former one behind it.
      place = MRBUnicodeString(newPlace);
      name = MRBUnicodeString(newName);
      object = newObject;
      nbChangesThen = nbTableChanges;
      nbChanges = &nbTableChanges;
      typeState = 0;
    }

   private:
    static bool IsShort(const MRBUnicodeString& text) { return text.GetLengthInByte() <= 15; }
    static bool HaveSameBits(const MRBUnicodeString& left, const MRBUnicodeString& right) {
      return std::memcmp(static_cast<const void*>(&left), &right, sizeof left) == 0;
    }

    MRBUnicodeString place;
    MRBUnicodeString name;
    const std::uint64_t* nbChanges = nullptr;  // null: the entry is of nothing
    std::uint64_t nbChangesThen = 0;
    KVLCodeObject* object = nullptr;
    KVLCodeObject* type = nullptr;
    std::uint64_t typeState = 0;  // 0: no type is remembered
  };

  /// The one entry that may be of these two.
  Entry& At(const MRBUnicodeString& place, const MRBUnicodeString& name) {
    constexpr std::uint64_t Spreader = 0x9e3779b97f4a7c15u;
    return entries[(Digest(place) << 16 ^ Digest(name)) * Spreader >> (64 - NbEntriesBits)];
  }

 private:
  static constexpr int NbEntriesBits = 5;

  static std::uint64_t Digest(const MRBUnicodeString& text) {
    return static_cast<std::uint64_t>(text.GetLengthInByte()) << 8 ^
           static_cast<unsigned char>(*text.ConvertToChar());
  }

  Entry entries[1 << NbEntriesBits];
};

#endif
