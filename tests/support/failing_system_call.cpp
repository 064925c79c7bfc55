#include "support/failing_system_call.h"

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>

#include <cstddef>
#include <stdexcept>
#include <vector>

namespace vestra_test {

void failSystemCall(long number, int error, std::optional<std::uint32_t> third) {
  const auto wanted = static_cast<std::uint32_t>(number);
  const auto answer = SECCOMP_RET_ERRNO | static_cast<std::uint32_t>(error);
  std::vector<sock_filter> lines = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, wanted, 1, 0),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  if (third) {
    lines.insert(lines.end(), {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[2])),
                               BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, *third, 1, 0),
                               BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)});
  }
  lines.push_back(BPF_STMT(BPF_RET | BPF_K, answer));
  const sock_fprog filter = {static_cast<unsigned short>(lines.size()), lines.data()};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
      prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) {
    throw std::runtime_error("no system call can be made to fail here");
  }
}

}  // namespace vestra_test
