#include "support/event_token.h"

#include <sys/eventfd.h>
#include <unistd.h>

namespace quarnel {

SettableToken::SettableToken() : system_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
SettableToken::~SettableToken() { close(static_cast<int>(system_)); }
void SettableToken::Set() { eventfd_write(static_cast<int>(system_), 1); }
void SettableToken::Clear() {
  eventfd_t count = 0;
  eventfd_read(static_cast<int>(system_), &count);
}

}  // namespace quarnel
