// How a service of the operating system is reached, and how a test replaces it.
//
// Each service is an abstract class with one accessor (`TheClock()`, `TheEventLog()`, ...). The
// program uses the real implementation; a test puts a fake in its place for its own duration with
// a `Replacement`. Nothing here is thread-safe: only the thread of the program itself reaches
// a service through its accessor.
#ifndef HITWICK_PLATFORM_SERVICE_H_
#define HITWICK_PLATFORM_SERVICE_H_

namespace platform {

// The place where the implementation in use of `Service` is kept; null means the real one.
template <class Service>
struct ServiceSlot {
  static inline Service* replacement = nullptr;
};

// The implementation in use: the replacement if there is one, else `real`.
template <class Service>
Service& InUse(Service& real) {
  Service* replacement = ServiceSlot<Service>::replacement;
  return replacement != nullptr ? *replacement : real;
}

// Puts `fake` in the place of a service until the end of its scope. Replacements may be nested.
template <class Service>
class Replacement {
 public:
  explicit Replacement(Service& fake) : previous_(ServiceSlot<Service>::replacement) {
    ServiceSlot<Service>::replacement = &fake;
  }
  ~Replacement() { ServiceSlot<Service>::replacement = previous_; }
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

 private:
  Service* previous_;
};

}  // namespace platform

#endif  // HITWICK_PLATFORM_SERVICE_H_
