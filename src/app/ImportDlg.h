#pragma once

#include <array>

#include "app/ImportReport.h"
#include "db/ImportFile.h"
#include "ui/Screen.h"

class QProgressBar;

namespace app {

/// The master-data import (dialog 435): shows how many lines wait in each file, and loads them.
class CImportDlg : public ui::Screen {
    Q_OBJECT

  public:
    CImportDlg();

  private:
    static constexpr int kFiles = 6;

    void countFiles();
    void importAll();
    FileReport importOne(int index);

    std::array<db::ImportSource, kFiles> sources_{};
    std::array<QProgressBar*, kFiles> bars_{};
};

}  // namespace app
