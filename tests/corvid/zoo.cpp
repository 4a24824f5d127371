#include "zoo.hpp"

namespace zoo {

int Animal::instances = 0;

AnimalHandle::AnimalHandle(Animal* animal) : m_animal(animal) {
  if (m_animal != nullptr) m_animal->addRef();
}

AnimalHandle::~AnimalHandle() {
  if (m_animal != nullptr) m_animal->removeRef();
}

AnimalHandle::operator bool() const noexcept { return m_animal != nullptr && m_animal->alive; }

}  // namespace zoo
