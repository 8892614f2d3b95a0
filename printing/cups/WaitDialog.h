#pragma once

#include <QProgressDialog>

#include "printing/cups/service/Connection.h"

namespace kadrona::printing::cups {

/// "Warten auf den Druckdienst …" over whatever window is active, with a button that gives up.
/// Object name: "PrintServiceWait".
class WaitDialog : public WaitDisplay {
 public:
    void Show(std::function<void()> cancel) override;
    void Hide() override;

 private:
    std::unique_ptr<QProgressDialog> dialog_;
};

}  // namespace kadrona::printing::cups
