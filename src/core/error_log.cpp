#include "core/error_log.h"

#include "base/date_time.h"
#include "core/own_files.h"
#include "core/paths.h"

namespace quarnel {

ErrorLog::ErrorLog(Files& files, Machine& machine, const Host& host, std::string applicationName)
    : files_(files), machine_(machine), host_(host), applicationName_(std::move(applicationName)) {}

std::string ErrorLog::Path() const {
  return DataFolder(machine_) + applicationName_ + "_ErrLogFile.txt";
}

void ErrorLog::WriteErrorLog(std::string_view label, const RuntimeError& error) {
  const DateTime now = host_.clock().Now();
  std::string entry = "Error Number :  ";
  entry += std::to_string(static_cast<int>(error.Number()));
  entry += "\r\nError Description :  ";
  entry += error.Description();
  entry += "\r\n";
  entry += DateText(now);
  entry += TimeText(now);
  entry += label;
  entry += "\r\n";
  entry.append(33, '-');
  entry += "\r\n";
  try {
    AppendToOwnFile(files_, machine_, Path(), waiting_ + entry);
  } catch (const RuntimeError&) {
    constexpr size_t kMostWaiting = size_t{1} << 16;
    if (waiting_.size() + entry.size() <= kMostWaiting) waiting_ += entry;
    throw;
  }
  waiting_.clear();
}

void ErrorLog::NoteInPassing(std::string_view label, const RuntimeError& error) {
  IgnoringErrors([&] { WriteErrorLog(label, error); });
}

}  // namespace quarnel
