#include "ui/dialogs/matrix_entry.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "model/options.h"

namespace ovaro::ui {

namespace {

using M = MatrixId;

// The lead matrices are listed up to the dialog's lead; Z and ZT, W and WT and the other constant
// or time-varying pairs are both listed and shown as the model holds them.
const std::vector<MatrixEntryGroup>& groups() {
  static const std::vector<MatrixEntryGroup> table{
      {"DataInSEC4", "System Equations", {M::A, M::B, M::C, M::Z, M::ZT, M::X0}},
      {"DataInSEMFONE",
       "System Equations with Forward Variables",
       {M::A, M::B, M::C, M::D1, M::Z, M::ZT, M::X0}},
      {"DataInSEMF",
       "System Equations with Forward Variables",
       {M::A, M::B, M::C, M::D1, M::D2, M::Z, M::ZT, M::X0}},
      {"DataInSEMFTHREE",
       "System Equations with Forward Variables",
       {M::A, M::B, M::C, M::D1, M::D2, M::D3, M::Z, M::ZT, M::X0}},
      {"DataInSEPI",
       "System Equations - Pindyck Form",
       {M::A0, M::A1, M::B1, M::C1, M::Z, M::ZT, M::X0}},
      {"DataInSESWONE",
       "System Equations - Pindyck Form with Forward Variables",
       {M::A0, M::A1, M::B1, M::C1, M::DHAT1, M::Z, M::ZT, M::X0}},
      {"DataInSESW",
       "System Equations - Pindyck Form with Forward Variables",
       {M::A0, M::A1, M::B1, M::C1, M::DHAT1, M::DHAT2, M::Z, M::ZT, M::X0}},
      {"DataInSESWTHREE",
       "System Equations - Pindyck Form with Forward Variables",
       {M::A0, M::A1, M::B1, M::C1, M::DHAT1, M::DHAT2, M::DHAT3, M::Z, M::ZT, M::X0}},
      {"DataInCRW",
       "Criterion Function",
       {M::W, M::WT, M::LAMBDA, M::LAMBDAT, M::XDES, M::XDEST, M::UDES, M::UDEST}},
      {"DataInCRWN",
       "Criterion Function - Terminal W Different",
       {M::W, M::WN, M::LAMBDA, M::LAMBDAT, M::XDES, M::XDEST, M::UDES, M::UDEST}},
      {"DataInStochAdd", "Stoch Elem: Additive Noise", {M::Q, M::XSIS}},
      {"DataInStoch", "Stoch Elem: Uncertain Parameters", {M::TH0, M::TH0DIFF, M::SITT0, M::ITHN}},
      {"DataInStochVE",
       "Stoch Elem: Measurement Error",
       {M::D, M::H, M::SIXX0, M::SITX0, M::R, M::GAM, M::ZETAS, M::ETAS, M::TH0DEV, M::X0DEV}},
      {"DataInGg", "Handcrafted Feedback Rule", {M::G, M::g}},
      {"DataInN", "Policy to Parameter Effect", {M::N}},
  };
  return table;
}

}  // namespace

std::span<const MatrixEntryGroup> matrixEntryGroups() {
  return groups();
}

const MatrixEntryGroup* matrixEntryGroup(std::string_view name) {
  for (const MatrixEntryGroup& g : groups()) {
    if (g.name == name) return &g;
  }
  return nullptr;
}

std::string_view systemEquationsGroup(const Model& model) {
  const bool pindyck = model.flags.systemForm == opt::kPindyck;
  if (model.flags.forwardVars != opt::kForwardYes) return pindyck ? "DataInSEPI" : "DataInSEC4";
  switch (model.dims.maxLead.value) {
    case 1:
      return pindyck ? "DataInSESWONE" : "DataInSEMFONE";
    case 2:
      return pindyck ? "DataInSESW" : "DataInSEMF";
    case 3:
      return pindyck ? "DataInSESWTHREE" : "DataInSEMFTHREE";
    default:
      return {};
  }
}

std::string_view criterionGroup(const Model& model) {
  return model.flags.wForm == opt::kWTerminalDifferent ? "DataInCRWN" : "DataInCRW";
}

int matrixButtonId(MatrixId id) {
  switch (id) {
    case M::A:
      return 600;
    case M::B:
      return 601;
    case M::C:
      return 602;
    case M::D1:
      return 603;
    case M::D2:
      return 604;
    case M::D3:
      return 605;
    case M::Z:
      return 606;
    case M::ZT:
      return 607;
    case M::A0:
      return 608;
    case M::A1:
      return 609;
    case M::B1:
      return 610;
    case M::C1:
      return 611;
    case M::DHAT1:
      return 612;
    case M::DHAT2:
      return 613;
    case M::DHAT3:
      return 614;
    case M::X0:
      return 615;
    case M::W:
      return 620;
    case M::WN:
      return 621;
    case M::WT:
      return 622;
    case M::LAMBDA:
      return 623;
    case M::LAMBDAT:
      return 624;
    case M::XDES:
      return 625;
    case M::XDEST:
      return 626;
    case M::UDES:
      return 627;
    case M::UDEST:
      return 628;
    case M::Q:
      return 660;
    case M::XSIS:
      return 661;
    case M::TH0:
      return 662;
    case M::TH0DIFF:
      return 663;
    case M::SITT0:
      return 664;
    case M::ITHN:
      return 667;
    case M::D:
      return 670;
    case M::H:
      return 671;
    case M::SIXX0:
      return 672;
    case M::SITX0:
      return 673;
    case M::R:
      return 674;
    case M::GAM:
      return 675;
    case M::ZETAS:
      return 676;
    case M::ETAS:
      return 677;
    case M::TH0DEV:
      return 678;
    case M::X0DEV:
      return 679;
    case M::G:
      return 680;
    case M::g:
      return 681;
    case M::N:
      return 690;
  }
  return 0;
}

std::string matrixButtonCaption(MatrixId id) {
  switch (id) {
    case M::TH0:
      return "TH0, Theta Means";
    case M::TH0DIFF:
      return "TH0DIFF, Theta0 Different";
    case M::SITT0:
      return "SITT0, Theta Covariance";
    case M::ITHN:
      return "ITHN, Theta to A, B and c Mapping";
    case M::Q:
      return "Q, System Noise Covariance";
    case M::XSIS:
      return "XSIS, System Noise Terms";
    case M::W:
      return "W, State Weights";
    case M::WN:
      return "WN, Terminal State Weights";
    case M::WT:
      return "WT, State Weights by Period";
    case M::LAMBDA:
      return "LAMBDA, Control Weights";
    case M::LAMBDAT:
      return "LAMBDAT, Control Weights by Period";
    case M::XDES:
      return "XDES, Desired States";
    case M::XDEST:
      return "XDEST, Desired States by Period";
    case M::UDES:
      return "UDES, Desired Controls";
    case M::UDEST:
      return "UDEST, Desired Controls by Period";
    case M::G:
      return "G, Feedback Matrix";
    case M::g:
      return "g, Feedback Vector";
    default:
      return matrixSpec(id).name;
  }
}

std::vector<std::string> sideAcronyms(const Model& model, Extent extent, std::string_view matrix) {
  const int count = extentOf(model, extent);
  const LabelTable* table = nullptr;
  switch (extent) {
    case Extent::N:
      table = &model.states;
      break;
    case Extent::M:
      table = &model.controls;
      break;
    case Extent::L:
      table = &model.exogenous;
      break;
    case Extent::NP:
      table = &model.parameters;
      break;
    case Extent::NY:
      table = &model.observations;
      break;
    case Extent::NT:
    case Extent::NTm1:
      table = &model.periods;
      break;
    case Extent::One:
      return {std::string(matrix)};
    case Extent::Three:
      return {"kind", "row", "column"};
  }
  std::vector<std::string> acronyms;
  for (int i = 0; i < count; ++i) {
    std::string a = i < static_cast<int>(table->acronyms.size()) ? table->acronyms[i] : "";
    if (a.find_first_not_of(' ') == std::string::npos) a = std::to_string(i + 1);
    acronyms.push_back(a);
  }
  return acronyms;
}

MatrixEntryDialog::MatrixEntryDialog(const MatrixEntryGroup& group, const Model& model,
                                     Action onMatrix, QWidget* parent)
    : QDialog(parent), buttons_(new QButtonGroup(this)), onMatrix_(std::move(onMatrix)) {
  setObjectName(QString::fromUtf8(group.name.data(), static_cast<qsizetype>(group.name.size())));
  setWindowTitle(QString::fromUtf8(group.title.data(), static_cast<qsizetype>(group.title.size())));
  buttons_->setObjectName(QStringLiteral("matrices"));
  auto* layout = new QVBoxLayout(this);
  auto* grid = new QGridLayout;
  int shown = 0;
  for (MatrixId id : group.matrices) {
    if (!model.holds(id)) continue;
    auto* button = new QPushButton(QString::fromStdString(matrixButtonCaption(id)), this);
    button->setAutoDefault(false);
    buttons_->addButton(button, matrixButtonId(id));
    grid->addWidget(button, shown / 2, shown % 2);
    ++shown;
  }
  layout->addLayout(grid);
  if (shown == 0) {
    // An empty dialog would leave a newcomer guessing why there is nothing to enter.
    layout->addWidget(new QLabel(
        QStringLiteral("The model holds none of these matrices: create one with File: New "
                       "or open one with File: Open."),
        this));
  }
  auto* box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(box, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(box);
  connect(buttons_, &QButtonGroup::idClicked, this, [this, group](int buttonId) {
    for (MatrixId id : group.matrices) {
      if (matrixButtonId(id) == buttonId && onMatrix_) onMatrix_(id);
    }
  });
}

}  // namespace ovaro::ui
