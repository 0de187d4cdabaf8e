#pragma once
// The desktop for the tray menu: makes its windows, and says which window is active and where there is room.

#include <string>

#include "desktop/Menuebilder.h"
#include "traymenu/FormBrannikMenueView.h"

namespace wendel {

class Desktopmenues final : public Menueumgebung {
  public:
    // After the application. The folder, in logic form, may hold a bitmap of the user's own for the tip.
    explicit Desktopmenues(const std::string& programmordner);
    // After the last view, before the application's end.
    ~Desktopmenues() override;
    Desktopmenues(const Desktopmenues&) = delete;
    Desktopmenues& operator=(const Desktopmenues&) = delete;

    std::unique_ptr<FormBrannikMenueView> neueView(FormBrannikMenue& form) override;
    Fensterhandle aktivesFenster() override;
    Arbeitsbereich freieFlaeche(Punkt ort) override;

  private:
    Menuebilder bilder_;
};

}  // namespace wendel
