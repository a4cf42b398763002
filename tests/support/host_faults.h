#pragma once

#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

// Hosts that refuse, for as long as one of these lives.

namespace quoravel {

/// Permissions count, even when the tests run as root.
class AsNobody {
  public:
    AsNobody() { Become(kNobody); }

    ~AsNobody() { Become(0); }

    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;

  private:
    static constexpr uid_t kNobody = 65534;

    static void Become(uid_t user) {
        const bool may_change = ::getuid() == 0;
        EXPECT_TRUE(!may_change || ::seteuid(user) == 0);
    }
};

/// A disc that is full behind the first `bytes` of every file.
class FullDisc {
  public:
    explicit FullDisc(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &before_), 0);
        const rlimit limit{bytes, before_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }

    ~FullDisc() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

    FullDisc(const FullDisc&) = delete;
    FullDisc& operator=(const FullDisc&) = delete;

  private:
    void (*handler_)(int);
    rlimit before_{};
};

} // namespace quoravel
