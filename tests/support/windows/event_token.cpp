#include "support/event_token.h"

#include "platform/windows/win32.h"

namespace quarnel {
namespace {

HANDLE HandleOf(std::intptr_t system) { return reinterpret_cast<HANDLE>(system); }

}  // namespace

SettableToken::SettableToken()
    : system_(reinterpret_cast<std::intptr_t>(CreateEventW(nullptr, TRUE, FALSE, nullptr))) {}
SettableToken::~SettableToken() { CloseHandle(HandleOf(system_)); }
void SettableToken::Set() { SetEvent(HandleOf(system_)); }
void SettableToken::Clear() { ResetEvent(HandleOf(system_)); }

}  // namespace quarnel
