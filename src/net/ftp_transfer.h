#pragma once

#include <memory>
#include <optional>

#include "net/transfers.h"

namespace quarnel {

// One file by FTP: passive, binary, overwriting. It is finished when the data has ended and the
// server says that this was all. A refusing reply fails it by its code.
class FtpTransfer : public Transfer {
 public:
  FtpTransfer(FtpSupport& support, std::shared_ptr<Transfers::Retired> retired);
  ~FtpTransfer() override;

 protected:
  int32_t Begin(const Fetch& fetch) override;
  void Abandon() override;

 private:
  void TimeIsUp();
  void StateChanged(FtpState state);
  void LoggedIn(FtpCompletion code);
  void Downloaded(FtpCompletion code);
  void Progressed(int64_t bytes);
  void SaidDone();
  void FailByReply();

  FtpSupport& support_;
  std::shared_ptr<Transfers::Retired> retired_;
  std::unique_ptr<CFtpClient> client_;
  std::string path_;
  HostTimer patience_;
  std::optional<SpeedWatch> speed_;
  std::optional<Host::UnderWay> underWay_;
  bool connected_ = false;
  bool hasData_ = false;
  bool saidDone_ = false;
};

}  // namespace quarnel
