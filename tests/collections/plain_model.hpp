// What the element collections hold, told the plainest way there is: numbers in lists. The random test does everything
// twice, here and on the real model, and compares. Copying one is its transaction. Thread rule: a plain value.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace collections_test {

enum class Kind { STORE, PROFILE, ENTRY, CONFIGURATION, CATEGORY, PARAM, TAG, PERSPECTIVE, OPERATION, COUNT };

enum class Feature {
  // sequences
  CATEGORIES,
  OPERANDS,
  CONTENTS,
  TAGS_OF,
  // maps
  PROFILES,
  VALUES,
  PARAMS,
  TAGS,
  PERSPECTIVES,
  // sets
  TAGGED,
  MEMBERS,
  COUNT
};

inline bool isSequence(Feature feature) { return feature <= Feature::TAGS_OF; }
inline bool isMap(Feature feature) { return feature >= Feature::PROFILES && feature <= Feature::PERSPECTIVES; }
inline bool isUnique(Feature feature) { return feature != Feature::CATEGORIES && feature != Feature::OPERANDS; }
inline bool isComposite(Feature feature) {
  return isMap(feature) || feature == Feature::CATEGORIES || feature == Feature::OPERANDS;
}
bool owns(Kind kind, Feature feature);
bool accepts(Feature feature, Kind kind);

enum class Collision { RAISE, KEEP, REPLACE };

/// Elements are numbers; the proxy of element 5 is ~5.
using Numbers = std::vector<int>;
using Place = std::pair<int, Feature>;  ///< an owner and its property

/// Each operation gives the key of the message that it must raise, or the empty text.
class PlainModel {
 public:
  struct Item {
    Kind kind;
    bool live;
    std::u16string key;
  };
  std::map<int, Item> items;
  std::map<int, Place> containers;
  std::map<int, int> active;  ///< the store's ActiveProfile
  std::set<Place> touched;    ///< what the outermost transaction has changed, also if it is back at what it was

  /// In order; maps by key, sets by number. The proxies of maps and sets are apart.
  Numbers contents(Place const& place) const;
  std::set<int> proxiesIn(Place const& place) const;
  /// The category that lists the element, or -1.
  int categoryOf(int id) const;
  bool isLive(int id) const { return items.count(id) != 0 && items.at(id).live; }

  std::string put(Place const& place, std::size_t at, int id, Collision collision = Collision::RAISE);
  std::string replace(Place const& place, std::size_t at, int id);
  std::string ensureAt(Place const& place, std::size_t at, int id);
  void remove(Place const& place, int id);
  void eraseAt(Place const& place, std::size_t at);
  void clear(Place const& place);
  std::string rekey(int id, std::u16string const& key);
  void setCategory(int id, int category);
  void addProxy(Place const& place, int id);
  /// Takes in the proxies of maps and sets whose elements have come to life.
  void resolve(Place const& place);
  void destroy(int id);

 private:
  bool liesIn(int id, int candidate) const;
  int bearerOf(Place const& place, std::u16string const& key) const;
  void leave(int id, Place const& place);
  void moveInto(Place const& place, int id);

  std::map<Place, Numbers> m_lists;
  std::map<Place, std::set<int>> m_proxies;
};

}  // namespace collections_test
