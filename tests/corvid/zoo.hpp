// Natives for the tests of the host: animals that are counted and can die while scripts hold them, and a value class.
// They know nothing of the host; zoo_classes.hpp binds them to it.
#pragma once

#include <boost/optional.hpp>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zoo {

enum class Diet : std::int32_t { PLANTS = 1, MEAT = 2, EVERYTHING = 5 };

class Animal;

/// A counted handle; true while the animal lives.
class AnimalHandle {
 public:
  AnimalHandle() = default;
  explicit AnimalHandle(Animal* animal);
  AnimalHandle(AnimalHandle const& other) : AnimalHandle(other.m_animal) {}
  AnimalHandle(AnimalHandle&& other) noexcept : m_animal(std::exchange(other.m_animal, nullptr)) {}
  AnimalHandle& operator=(AnimalHandle other) noexcept {
    std::swap(m_animal, other.m_animal);
    return *this;
  }
  ~AnimalHandle();

  explicit operator bool() const noexcept;
  Animal* operator->() const noexcept { return m_animal; }
  Animal* get() const noexcept { return m_animal; }

 private:
  Animal* m_animal = nullptr;
};

class Animal {
 public:
  Animal() { ++instances; }
  virtual ~Animal() { --instances; }
  Animal(Animal const&) = delete;
  Animal& operator=(Animal const&) = delete;

  void addRef() noexcept { ++m_references; }
  void removeRef() noexcept {
    if (--m_references == 0) delete this;
  }
  virtual char const* className() const { return "zoo.residents.Animal"; }

  bool alive = true;
  std::u16string name;
  double weight = 1;
  bool tame = false;
  boost::optional<std::uint32_t> age;
  Diet diet = Diet::PLANTS;
  AnimalHandle mother;
  std::vector<AnimalHandle> offspring;

  static int instances;

 private:
  int m_references = 0;
};

class Cat final : public Animal {
 public:
  char const* className() const override { return "zoo.residents.Cat"; }
};

/// A value: two numbers.
struct Place {
  double latitude = 0;
  double longitude = 0;

  friend bool operator==(Place const& left, Place const& right) {
    return left.latitude == right.latitude && left.longitude == right.longitude;
  }
};

}  // namespace zoo
