// A process that can open nothing more.
#pragma once

#include <fcntl.h>
#include <sys/resource.h>

#include <utility>
#include <vector>

#include "platform/LocalSocket/Socket.h"

namespace test_support {

// As long as it lives, the process is at its limit of open descriptors. Those that were open before
// stay open.
class WithoutDescriptors {
  public:
    WithoutDescriptors() {
        getrlimit(RLIMIT_NOFILE, &before_);
        const rlimit few{100, before_.rlim_max};
        setrlimit(RLIMIT_NOFILE, &few);
        while (local_socket::Descriptor taken{open("/dev/null", O_RDONLY)}) {
            taken_.push_back(std::move(taken));
        }
    }
    WithoutDescriptors(const WithoutDescriptors&) = delete;
    WithoutDescriptors& operator=(const WithoutDescriptors&) = delete;
    ~WithoutDescriptors() { setrlimit(RLIMIT_NOFILE, &before_); }

  private:
    rlimit before_{};
    std::vector<local_socket::Descriptor> taken_;
};

}  // namespace test_support
