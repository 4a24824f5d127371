// The null baseline: what a user would write by hand instead of the library. Structs with a virtual setter for each
// property, an undo log that remembers what a setter replaced, and containers of the standard library.
// Ownership: as the standard containers say. Thread rule: one thread.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace plain {

using Old = std::variant<bool, double, void*>;
using Text = std::u16string;

class Object {
 public:
  virtual ~Object() = default;
  virtual void restore(unsigned property, Old const& old) = 0;
};

class UndoLog {
 public:
  struct Entry {
    Object* object;
    unsigned property;
    Old old;
  };
  using Listener = std::function<void(std::vector<Entry> const&)>;

  void begin() { m_marks.push_back(m_entries.size()); }
  void commit() {
    m_marks.pop_back();
    if (!m_marks.empty()) return;
    for (Listener const& listener : m_listeners) listener(m_entries);
    m_entries.clear();
  }
  void rollBack() {
    std::size_t const mark = m_marks.back();
    m_marks.pop_back();
    while (m_entries.size() > mark) {
      Entry const& last = m_entries.back();
      last.object->restore(last.property, last.old);
      m_entries.pop_back();
    }
  }
  void note(Object& object, unsigned property, Old old) { m_entries.push_back({&object, property, old}); }
  void listen(Listener listener) { m_listeners.push_back(std::move(listener)); }

 private:
  std::vector<Entry> m_entries;
  std::vector<std::size_t> m_marks;
  std::vector<Listener> m_listeners;
};

/// A numeric parameter's data.
class Number : public Object {
 public:
  enum Property { VALUE, MIN, MAX };
  explicit Number(UndoLog& log) : m_log(&log) {}

  virtual double getValue() const { return m_value; }
  virtual void setValue(double value) { set(m_value, value, VALUE); }
  virtual void setMin(double value) { set(m_min, value, MIN); }
  virtual void setMax(double value) { set(m_max, value, MAX); }
  virtual Old get(unsigned property) const { return field(property); }
  virtual void set(unsigned property, Old const& value) {
    set(const_cast<double&>(field(property)), std::get<double>(value), property);
  }
  void restore(unsigned property, Old const& old) override {
    const_cast<double&>(field(property)) = std::get<double>(old);
  }

 private:
  double const& field(unsigned property) const { return property == VALUE ? m_value : property == MIN ? m_min : m_max; }
  void set(double& field, double value, unsigned property) {
    if (field == value) return;
    m_log->begin();
    m_log->note(*this, property, field);
    field = value;
    m_log->commit();
  }

  UndoLog* m_log;
  bool m_enabled = true;
  bool m_visible = true;
  Text m_name, m_description, m_help, m_unit;
  double m_value = 0, m_min = -2147483648.0, m_max = 2147483647.0, m_step = 1;
  std::vector<double> m_allowed;
};

struct Category;

struct Message {
  Text code, text;
};

/// A parameter's state, with its data.
struct Parameter {
  virtual ~Parameter() = default;
  Text key;
  Category* category = nullptr;
  std::vector<std::unique_ptr<Message>> messages;
  std::map<Text, Text> metadata;
  std::vector<void*> tags;
  Text typeName, code;
  bool initialized = false, inPerspective = true, visible = true, dirty = false, modified = false, awake = true;
  std::unique_ptr<Number> data, standard;
};

struct Category {
  std::vector<Parameter*> contents;
};

/// An entry of a saved profile.
struct Entry {
  virtual ~Entry() = default;
  Text key;
  std::unique_ptr<Number> data;
};

using Profile = std::map<Text, std::unique_ptr<Entry>>;

inline void insertEntry(Profile& profile, Text const& key, UndoLog& log) {
  auto entry = std::make_unique<Entry>();
  entry->key = key;
  entry->data = std::make_unique<Number>(log);
  profile.emplace(key, std::move(entry));
}

}  // namespace plain
