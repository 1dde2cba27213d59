#include "shards/stop_signals.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>
#include <sys/signalfd.h>
#include <unistd.h>

namespace Quillet {

namespace {

constexpr int endingSignals[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGALRM, SIGXCPU};

bool isIgnored(int number) {
  struct sigaction action;
  return sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

StopSignals::StopSignals() {
  sigemptyset(&held_);
  for (const int number : endingSignals) {
    if (!isIgnored(number)) sigaddset(&held_, number);
  }
  descriptor_ = signalfd(-1, &held_, SFD_CLOEXEC);
  if (descriptor_ < 0) {
    throw std::runtime_error(std::string("can not wait for signals: ") + std::strerror(errno));
  }
  sigprocmask(SIG_BLOCK, &held_, &formerMask_);
  struct sigaction ignored {};
  ignored.sa_handler = SIG_IGN;
  sigaction(SIGPIPE, &ignored, &formerPipe_);
  sigaction(SIGXFSZ, &ignored, &formerFileSize_);
}

StopSignals::~StopSignals() {
  ::close(descriptor_);
  restore();
}

void StopSignals::restore() const {
  sigaction(SIGPIPE, &formerPipe_, nullptr);
  sigaction(SIGXFSZ, &formerFileSize_, nullptr);
  sigprocmask(SIG_SETMASK, &formerMask_, nullptr);
}

void StopSignals::check() const {
  sigset_t pending;
  sigpending(&pending);
  for (const int number : endingSignals) {
    if (sigismember(&held_, number) == 1 && sigismember(&pending, number) == 1) throw Stopped();
  }
}

}  // namespace Quillet
