#include "model/transform/reconcile.h"

#include <array>
#include <string>

#include "model/options.h"

namespace ovaro {

namespace {

constexpr const char* kDeletionCaption = "Deletion procedure.";

struct SizeClass {
  ElementClass cls;
  Count Dimensions::*count;
  const char* deletionMessage;
};

// In the order the dialog's counts are reconciled.
constexpr std::array<SizeClass, 5> kSizeClasses = {{
    {ElementClass::States, &Dimensions::n,
     "One state variable at a time will be deleted and the remaining variables\r will be "
     "renumbered after each deletion.  It is easiest therefore\r if you delete the state with the "
     "largest row number first\r and work your way back toward the first state.   Thus if you\r "
     "want to delete states 2,4 and 7, delete number 7 first and\r then 4 and then 2."},
    {ElementClass::Controls, &Dimensions::m,
     "One control variable at a time will be deleted and the remaining variables\r will be "
     "renumbered after each deletion.  It is easiest therefore\r if you delete the control with "
     "the largest row number first\r and work your way back toward the first control.   Thus if "
     "you\r want to delete controls 2,4 and 7, delete number 7 first and\r then 4 and then 2."},
    {ElementClass::Exogenous, &Dimensions::l,
     "One exogenous variable at a time will be deleted and the remaining variables\r will be "
     "renumbered after each deletion.  It is easiest therefore\r if you delete the exogenous "
     "variable with the largest row number first\r and work your way back toward the first "
     "exogenous variable.   Thus if you\r want to delete exogenous variables 2,4 and 7, delete "
     "number 7 first and\r then 4 and then 2."},
    {ElementClass::Parameters, &Dimensions::np,
     "One uncertain parameter at a time will be deleted and the remaining parameters\r will be "
     "renumbered after each deletion.  It is easiest therefore\r if you delete the uncertain "
     "parameter with the largest row number first\r and work your way back toward the first "
     "uncertain parameter.   Thus if you\r want to delete uncertain parameters 2,4 and 7, delete "
     "number 7 first and\r then 4 and then 2."},
    {ElementClass::Observations, &Dimensions::ny,
     "One observation at a time will be deleted and the remaining observations\r will be "
     "renumbered after each deletion.  It is easiest therefore\r if you delete the observation "
     "with the largest row number first\r and work your way back toward the first observation.  "
     " Thus if you\r want to delete observation variables 2,4 and 7, delete number 7 first "
     "and\r then 4 and then 2."},
}};

}  // namespace

void reconcileSize(Model& model, const Dimensions& old, Prompter& prompter,
                   const AskDeleteElem& askDeleteElem) {
  // Each class moves by what the dialog changed. The counts start from what the matrices hold,
  // because adding or deleting a state under measurement error may take an observation with it.
  std::array<int, kSizeClasses.size()> change{};
  for (std::size_t k = 0; k < kSizeClasses.size(); ++k) {
    Count& count = model.dims.*kSizeClasses[k].count;
    change[k] = count.value - (old.*kSizeClasses[k].count).value;
    count = old.*kSizeClasses[k].count;
  }
  for (std::size_t k = 0; k < kSizeClasses.size(); ++k) {
    const SizeClass& c = kSizeClasses[k];
    Count& count = model.dims.*c.count;
    const int before = count.value;
    if (change[k] > 0) {
      count.set(before + change[k]);
      addElements(model, c.cls, before, prompter);
    } else if (change[k] < 0) {
      prompter.inform(c.deletionMessage, kDeletionCaption);
      // One element at a time, each deletion told the count before it; a refused or cancelled
      // deletion leaves its element.
      for (int done = 0; done < -change[k]; ++done) {
        const std::optional<int> index = askDeleteElem();
        if (index) deleteElement(model, c.cls, *index, count.value, prompter);
      }
    }
  }
  // A changed initial period is put back first, so that a terminal change works on the period
  // count the model will have; its refusal is said after.
  const bool initialChanged = model.dims.initialPeriod.value != old.initialPeriod.value;
  if (initialChanged) {
    model.dims.initialPeriod = old.initialPeriod;
    model.dims.recomputePeriods();
  }
  if (model.dims.terminalPeriod.value != old.terminalPeriod.value)
    changeTerminalPeriod(model, old.nt.value, prompter);
  if (initialChanged)
    prompter.inform(
        "Changes in the initial time period are not yet enabled.            \r Use changes in the "
        "acronyms for the time periods instead.",
        kDeletionCaption);
}

namespace {

constexpr const char* kFormCaption = "Transformation";
constexpr const char* kStochCaption = "Transformation not yet implemented!";

// A change that is not carried out: the option goes back and the message says why.
void refuse(int& flag, int old, const char* message, const char* caption, Prompter& prompter) {
  flag = old;
  prompter.inform(message, caption);
}

void reconcileForms(Model& model, const SpecFlags& old, Prompter& prompter) {
  SpecFlags& f = model.flags;
  auto binary = [&](int& flag, int was, int a, int b, const char* aToB, const char* bToA) {
    if (flag == was) return;
    if (was == a && flag == b)
      refuse(flag, was, aToB, kFormCaption, prompter);
    else if (was == b && flag == a)
      refuse(flag, was, bToA, kFormCaption, prompter);
    else
      refuse(flag, was, "Transformation not yet implemented!", kFormCaption, prompter);
  };
  binary(f.criterionForm, old.criterionForm, opt::kQuadraticTracking, opt::kQuadraticForm,
         "Not yet implemented! - Criterion from Tracking to Quadratic Form",
         "Not yet implemented! - Criterion from Quadratic Form to Tracking");
  binary(f.systemForm, old.systemForm, opt::kRegular, opt::kPindyck,
         "Not yet implemented! - System equations from Regular to Pindyck Form",
         "Not yet implemented! - System equations from Pindyck to Regular Form");
  binary(f.forwardVars, old.forwardVars, opt::kForwardNo, opt::kForwardYes,
         "Not yet implemented! - Forward variables from No to Yes",
         "Not yet implemented! - Forward variables from Yes to No");
  binary(f.policyToParam, old.policyToParam, opt::kPolicyNo, opt::kPolicyYes,
         "Not yet implemented! - Policy Parameter from No to Yes",
         "Not yet implemented! - Policy Parameter from Yes to No");

  // Each carried-out change names its transformation; any other change is refused.
  auto change =
      [&](int& flag, int was,
          std::initializer_list<std::pair<std::pair<int, int>, void (*)(Model&, Prompter&)>> moves,
          std::initializer_list<std::pair<std::pair<int, int>, const char*>> refusals) {
        if (flag == was) return;
        for (const auto& [fromTo, op] : moves)
          if (fromTo.first == was && fromTo.second == flag) return op(model, prompter);
        for (const auto& [fromTo, text] : refusals)
          if (fromTo.first == was && fromTo.second == flag)
            return refuse(flag, was, text, kFormCaption, prompter);
        refuse(flag, was, "Transformation not yet implemented!", kFormCaption, prompter);
      };
  using opt::kWConstant, opt::kWTerminalDifferent, opt::kWTimeVarying;
  change(f.wForm, old.wForm,
         {{{kWConstant, kWTerminalDifferent}, wConstantToTerminalDifferent},
          {{kWConstant, kWTimeVarying}, wConstantToTimeVarying},
          {{kWTerminalDifferent, kWConstant}, wTerminalDifferentToConstant},
          {{kWTimeVarying, kWConstant}, wTimeVaryingToConstant}},
         {{{kWTerminalDifferent, kWTimeVarying},
           "Not yet implemented! - W terminal different to W \t\t\t\t\r time-varying.  Use "
           "instead W term diff to W constant \t\t\t\t\r and then W constant to W time-varying."},
          {{kWTimeVarying, kWTerminalDifferent},
           "Not yet implemented! - W time-varying to W terminal different"}});
  change(f.lambdaForm, old.lambdaForm,
         {{{opt::kLambdaConstant, opt::kLambdaTimeVarying}, lambdaConstantToTimeVarying},
          {{opt::kLambdaTimeVarying, opt::kLambdaConstant}, lambdaTimeVaryingToConstant}},
         {});
  change(f.xdesForm, old.xdesForm,
         {{{opt::kXdesConstant, opt::kXdesTimeVarying}, xdesConstantToTimeVarying}},
         {{{opt::kXdesTimeVarying, opt::kXdesConstant},
           "Not yet implemented! - X desired from time-varying to constant."}});
  change(f.udesForm, old.udesForm,
         {{{opt::kUdesConstant, opt::kUdesTimeVarying}, udesConstantToTimeVarying}},
         {{{opt::kUdesTimeVarying, opt::kUdesConstant},
           "Not yet implemented! - U desired from time-varying to constant."}});
  change(f.zForm, old.zForm,
         {{{opt::kZConstant, opt::kZTimeVarying}, zConstantToTimeVarying},
          {{opt::kZTimeVarying, opt::kZConstant}, zTimeVaryingToConstant}},
         {});
}

void reconcileStochasticTerms(Model& model, int was, Prompter& prompter,
                              const ShowSizeDialog& showSizeDialog) {
  int& now = model.flags.stochTerms;
  if (now == was) return;
  using opt::kDeterministic, opt::kAdditiveNoise, opt::kParameterUncertainty,
      opt::kMeasurementError;
  auto parameterCounts = [&] {
    prompter.inform(
        "In the following dialog enter only the number of uncertain parameters and Monte Carlo "
        "runs.",
        "Set number of uncertain parameters!");
    if (showSizeDialog) showSizeDialog();
  };
  if (was == kDeterministic && now == kAdditiveNoise)
    return deterministicToAdditiveNoise(model, prompter);
  if (was == kDeterministic && now == kParameterUncertainty) {
    parameterCounts();
    return deterministicToParameterUncertainty(model, prompter);
  }
  if (was == kAdditiveNoise && now == kParameterUncertainty) {
    parameterCounts();
    return additiveNoiseToParameterUncertainty(model, prompter);
  }
  if (was == kParameterUncertainty && now == kMeasurementError) {
    prompter.inform("In the following dialog enter only the number of observation variables.",
                    "Set number of observation variables!");
    if (showSizeDialog) showSizeDialog();
    return parameterUncertaintyToMeasurementError(model, prompter);
  }
  if (was == kMeasurementError && now == kDeterministic)
    return measurementErrorToDeterministic(model, prompter);
  const char* text = "Transformation not yet implemented!";
  if (was == kDeterministic && now == kMeasurementError)
    text =
        "The transformation of the stochastic terms specification\t\t\t\t\r from deterministic to "
        "stochastic with measurement error\t\t\t\t\r is not yet implemented.  Rather do this a "
        "step at\t\t\t\t\r a time from deterministic to stoch with uncer parameters\t\t\t\t\r and "
        "then from stoch with uncer para to stoch with\t\t\t\t\r measurment error.";
  else if (was == kAdditiveNoise && now == kDeterministic)
    text =
        "The transformation of the stochastic terms specification\t\t\t\t\r from stochastic with "
        "additive noise to deterministic\t\t\t\t\r is not yet implemented.";
  else if (was == kAdditiveNoise && now == kMeasurementError)
    text =
        "The transformation of the stochastic terms specification\t\t\t\t\r from stoch with "
        "additive noise to stochastic with measurement error\t\t\t\t\r is not yet implemented.  "
        "Rather do this a step at\t\t\t\t\r a time from stoch with additive noise to stoch with "
        "uncer parameters\t\t\t\t\r and then from stoch with uncer para to stoch with\t\t\t\t\r "
        "measurment error.";
  else if (was == kParameterUncertainty && now == kDeterministic)
    text =
        "The transformation of the stochastic terms specification\t\t\t\t\r from stochastic with "
        "uncertain parameters to deterministic\t\t\t\t\r is not yet implemented.";
  else if (was == kParameterUncertainty && now == kAdditiveNoise)
    text =
        "The transformation of the stochastic terms specification\t\t\t\t\r from stochastic with "
        "uncertain para to stoch w add noise\t\t\t\t\r is not yet implemented.";
  else if (was == kMeasurementError && now == kAdditiveNoise)
    text =
        "The transformation of the stochastic terms specification\t\t\t\t\r from stochastic with "
        "measurement error to stochastic\t\t\t\t\r with additive noise terms is not yet "
        "implemented.";
  else if (was == kMeasurementError && now == kParameterUncertainty)
    text =
        "The transformation of the stochastic terms specification\t\t\t\t\r from stochastic with "
        "measurement error to stochastic\t\t\t\t\r with uncertain parameters is not yet "
        "implemented.";
  refuse(now, was, text, kStochCaption, prompter);
}

}  // namespace

void reconcileSpecification(Model& model, const SpecFlags& old, Prompter& prompter,
                            const ShowSizeDialog& showSizeDialog) {
  reconcileForms(model, old, prompter);
  reconcileStochasticTerms(model, old.stochTerms, prompter, showSizeDialog);
}

namespace {

// A form command on a model that is not in the form it starts from would move data that is not
// there; it says so instead.
bool inForm(int flag, int from, const char* what, Prompter& prompter) {
  if (flag == from) return true;
  prompter.inform(std::string(what) + " is not in the form this transformation starts from.",
                  kFormCaption);
  return false;
}

}  // namespace

bool runTransformationCommand(Model& model, int id, Prompter& prompter,
                              const ShowSizeDialog& countsDialog, const ShowSizeDialog& sizeDialog,
                              const AskDeleteElem& askDeleteElem) {
  SpecFlags& f = model.flags;
  auto form = [&](int& flag, int from, int to, const char* what, void (*op)(Model&, Prompter&)) {
    if (!inForm(flag, from, what, prompter)) return;
    flag = to;
    op(model, prompter);
  };
  auto add = [&](ElementClass cls, Count Dimensions::*count) {
    const int old = (model.dims.*count).value;
    (model.dims.*count).set(old + 1);
    addElements(model, cls, old, prompter);
  };
  auto remove = [&](ElementClass cls, Count Dimensions::*count) {
    const int old = (model.dims.*count).value;
    (model.dims.*count).set(old - 1);
    const std::optional<int> index = askDeleteElem ? askDeleteElem() : std::nullopt;
    // Nothing deleted, nothing changed: the count goes back to what the matrices hold.
    if (!index || !deleteElement(model, cls, *index, old, prompter)) (model.dims.*count).set(old);
  };
  using namespace opt;
  switch (id) {
    case 86:
      form(f.wForm, kWConstant, kWTerminalDifferent, "W", wConstantToTerminalDifferent);
      return true;
    case 88:
      form(f.wForm, kWConstant, kWTimeVarying, "W", wConstantToTimeVarying);
      return true;
    case 90:
      form(f.wForm, kWTimeVarying, kWConstant, "W", wTimeVaryingToConstant);
      return true;
    case 92:
      form(f.lambdaForm, kLambdaConstant, kLambdaTimeVarying, "Lambda",
           lambdaConstantToTimeVarying);
      return true;
    case 94:
      form(f.lambdaForm, kLambdaTimeVarying, kLambdaConstant, "Lambda",
           lambdaTimeVaryingToConstant);
      return true;
    case 96:
      form(f.xdesForm, kXdesConstant, kXdesTimeVarying, "X desired", xdesConstantToTimeVarying);
      return true;
    case 98:
      form(f.udesForm, kUdesConstant, kUdesTimeVarying, "U desired", udesConstantToTimeVarying);
      return true;
    case 81:
      form(f.zForm, kZConstant, kZTimeVarying, "Z", zConstantToTimeVarying);
      return true;
    case 100:
      if (f.stochTerms != kDeterministic) {
        prompter.inform("Beginning Complexity Not Deterministic", kFormCaption);
        return true;
      }
      f.stochTerms = kAdditiveNoise;
      deterministicToAdditiveNoise(model, prompter);
      return true;
    case 102:
      if (f.stochTerms == kParameterUncertainty) {
        prompter.inform(
            "Stochastic Term Specification Already\t\t\t\t\t\t\t\t\r Stochastic with "
            "Uncertain Parameters",
            kFormCaption);
        return true;
      }
      f.stochTerms = kParameterUncertainty;
      prompter.inform(
          "In the following dialog enter only the number of uncertain parameters and Monte "
          "Carlo runs.",
          "Set number of uncertain parameters!");
      if (countsDialog) countsDialog();
      deterministicToParameterUncertainty(model, prompter);
      return true;
    case 103:
      if (f.stochTerms != kAdditiveNoise) {
        prompter.inform(
            "Beginning Stochastic Term Specification\t\t\t\t\t\t\t\t\r Not Stochastic with "
            "Additive Noise",
            kFormCaption);
        return true;
      }
      f.stochTerms = kParameterUncertainty;
      prompter.inform(
          "In the following dialog enter only the number\t\t\t\t\t\t\t\t\r of uncertain "
          "parameters and Monte Carlo runs.",
          "Set number of uncertain parameters!");
      if (countsDialog) countsDialog();
      additiveNoiseToParameterUncertainty(model, prompter);
      return true;
    case 104:
      if (f.stochTerms == kMeasurementError) {
        prompter.inform(
            "Stochastic Terms Specification Already\t\t\t\t\t\t\t\r Stochastic with "
            "Measurement Error",
            kFormCaption);
        return true;
      }
      f.stochTerms = kMeasurementError;
      prompter.inform(
          "In the following dialog enter only the number\t\t\t\t\t\t\t\t\r of observation "
          "variables.",
          "Set number of observation variables!");
      if (countsDialog) countsDialog();
      parameterUncertaintyToMeasurementError(model, prompter);
      return true;
    case 106:
      if (f.stochTerms == kDeterministic) {
        prompter.inform("Model Specification Is Already\t\t\t\t\t\t\t\r Deterministic",
                        kFormCaption);
        return true;
      }
      f.stochTerms = kDeterministic;
      measurementErrorToDeterministic(model, prompter);
      return true;
    case 108:
      add(ElementClass::States, &Dimensions::n);
      return true;
    case 112:
      add(ElementClass::Controls, &Dimensions::m);
      return true;
    case 114:
      add(ElementClass::Exogenous, &Dimensions::l);
      return true;
    case 115:
      add(ElementClass::Observations, &Dimensions::ny);
      return true;
    case 116:
      add(ElementClass::Parameters, &Dimensions::np);
      return true;
    case 121:
      remove(ElementClass::States, &Dimensions::n);
      return true;
    case 118:
      remove(ElementClass::Controls, &Dimensions::m);
      return true;
    case 119:
      remove(ElementClass::Exogenous, &Dimensions::l);
      return true;
    case 120:
      remove(ElementClass::Observations, &Dimensions::ny);
      return true;
    case 122:
      remove(ElementClass::Parameters, &Dimensions::np);
      return true;
    case 123:
      prompter.inform("In the following dialog modify only the number of the terminal period.",
                      "Change Terminal Period");
      if (sizeDialog) sizeDialog();
      return true;
    default:
      return false;
  }
}

}  // namespace ovaro
