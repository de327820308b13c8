// Permissions bind everyone but root: a test of them that root runs becomes an ordinary user.
#ifndef HITWICK_TESTS_FAKES_ORDINARY_USER_LINUX_H_
#define HITWICK_TESTS_FAKES_ORDINARY_USER_LINUX_H_

#include <unistd.h>

#include <exception>
#include <stdexcept>

namespace fakes {

// For its lifetime the process has the rights of an ordinary user, also when root has started it.
class OrdinaryUser {
 public:
  OrdinaryUser() {
    if (was_root_ && (setegid(kNobody) != 0 || seteuid(kNobody) != 0)) {
      throw std::runtime_error("cannot become an ordinary user");
    }
  }
  ~OrdinaryUser() {
    if (was_root_ && (seteuid(0) != 0 || setegid(group_) != 0)) std::terminate();
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

 private:
  static constexpr uid_t kNobody = 65534;

  const bool was_root_ = geteuid() == 0;
  const gid_t group_ = getegid();
};

}  // namespace fakes

#endif  // HITWICK_TESTS_FAKES_ORDINARY_USER_LINUX_H_
