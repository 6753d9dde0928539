#include "ui/layout.h"

#include "base/runtime_error.h"

namespace rotacasts::layout {
namespace {

using forms::Alignment;
using enum forms::Kind;

// clang-format off
constexpr ControlRow kControls[] = {
    //                              container  text                     left   top  width  height  tab
    {"Frame2",      Frame,    "",       "Add Rotacast",         {  240, 4680, 10695,  975}, 1, Back::Face},
    {"txtMessage",  TextBox,  "Frame2", "",                     {  240,  360,  8775,  375}, 2, Back::Paper, 60, Alignment::Left, "Frame2"},
    {"Frame1",      Frame,    "",       "Rotacasts",            {  240,  240, 10695, 4335}, 0, Back::Face},
    {"txtInterval", TextBox,  "Frame1", "2",                    { 4320, 3960,   375,  255}, 5, Back::Platform, 2, Alignment::Left, "Label10"},
    {"chkAuto",     CheckBox, "Frame1", "",                     { 2040, 3960,   255,  255}, 4, Back::Face, 0, Alignment::Left, "Label9"},
    {"lstMessages", ListBox,  "Frame1", "",                     {  240,  360, 10215, 3375}, 3, Back::Paper, 0, Alignment::Left, "Frame1"},
    {"Label1",      Label,    "Frame1", "Right click a message in the list for options.",
                                                                { 7320, 3960,  3135,  255}, 9, Back::Face, 0, Alignment::Right},
    {"Label9",      Label,    "Frame1", "Display Rotacasts:",   {  240, 3960,  1815,  255}, 8, Back::Face},
    {"Label10",     Label,    "Frame1", "Show Message Every",   { 2640, 3960,  1575,  255}, 7, Back::Face},
    {"Label11",     Label,    "Frame1", "Mins",                 { 4800, 3960,   375,  255}, 6},
};

constexpr MenuRow kMenus[] = {
    {1, "mnuMain",           "Main"},
    {2,   "mnuUp",           "Move Up"},
    {2,   "mnuDown",         "Move Down"},
    {2,   "mnuDelete",       "Delete"},
    {1, "mnuMessages",       "Message Options"},
    {2,   "mnuInsert",       "Insert Info Message"},
    {3,     "mnuNextMap",       "Next Map",               "{ShowNextMap}"},
    {3,     "mnuHighScorer",    "Highest Scorer",         "{ShowHighScorer}"},
    {3,     "mnuLowScorer",     "Lowest Scorer",          "{ShowLowScorer}"},
    {3,     "mnuMostKills",     "Most Kills",             "{ShowMostKills}"},
    {3,     "mnuLeastKills",    "Least Kills",            "{ShowLeastKills}"},
    {3,     "mnuMostDeaths",    "Most Deaths",            "{ShowMostDeaths}"},
    {3,     "mnuLeastDeaths",   "Least Deaths",           "{ShowLeastDeaths}"},
    {3,     "mnuBestRatio",     "Best Kill/Death Ratio",  "{ShowBestKillDeathRatio}"},
    {3,     "mnuWorstRatio",    "Worst Kill/Death Ratio", "{ShowWorstKillDeathRatio}"},
    {3,     "mnuMostMedSaves",  "Most Medic Saves",       "{ShowMostMedicSaves}"},
    {3,     "mnuMostRevives",   "Most Revives",           "{ShowMostRevives}"},
    {3,     "mnuMostHeadshots", "Most Headshots",         "{ShowMostHeadshots}"},
    {3,     "mnuBestHSRatio",   "Best Headshot/Kills %",  "{ShowBestHeadshotKillRatio}"},
    {3,     "mnuMostSuicides",  "Most Suicides",          "{ShowMostSuicides}"},
    {3,     "mnuMostMurders",   "Most Murders",           "{ShowMostMurders}"},
    {3,     "mnuBestGametype",  "Best Gametype Stat 1 ",  "{ShowBestGametypeStat1}"},
    {3,     "mnuBestGametype2", "Best Gametype Stat 2",   "{ShowBestGametypeStat2}"},
    {3,     "mnuBestGametype3", "Best Gametype Stat 3",   "{ShowBestGametypeStat3}"},
    {2,   "mnuSep1",         "-"},
    {2,   "mnuCut",          "Cut"},
    {2,   "mnuCopy",         "Copy"},
    {2,   "mnuPaste",        "Paste"},
    {2,   "mnuDelete2",      "Delete"},
    {2,   "mnuSep2",         "-"},
    {2,   "mnuSelectAll",    "Select All"},
};
// clang-format on

forms::Control& AddControl(forms::Form& form, const ControlRow& row) {
  const std::string name(row.name);
  const std::string text(row.text);
  switch (row.kind) {
    case Frame: {
      auto& frame = form.Add<forms::Frame>(name);
      frame.SetCaption(text);
      return frame;
    }
    case Label: {
      auto& label = form.Add<forms::Label>(name);
      label.SetCaption(text);
      label.SetAlignment(row.alignment);
      return label;
    }
    case TextBox: {
      auto& box = form.Add<forms::TextBox>(name);
      box.SetMaxLength(static_cast<std::size_t>(row.maxLength));
      box.SetText(text);
      return box;
    }
    case CheckBox:
      return form.Add<forms::CheckBox>(name);
    case ListBox:
      return form.Add<forms::ListBox>(name);
    case Image:
      return form.Add<forms::Image>(name);
  }
  throw RuntimeError(ErrorNumber::InternalError, name);
}

}  // namespace

std::span<const ControlRow> Controls() {
  return kControls;
}
std::span<const MenuRow> Menus() {
  return kMenus;
}

void BuildControls(forms::Form& form) {
  for (const ControlRow& row : kControls) {
    forms::Control& control = AddControl(form, row);
    control.SetBounds(row.bounds);
    control.SetTabIndex(row.tabIndex);
    if (row.back != Back::Platform) {
      control.SetBackColour(row.back == Back::Face ? kFace : kPaper);
    }
  }
  for (const ControlRow& row : kControls) {  // they can stand below what refers to them
    forms::Control& control = *form.Find(row.name);
    if (!row.container.empty()) control.MoveInto(form.Find(row.container));
    if (!row.label.empty()) control.SetLabelledBy(&form.Get<forms::CaptionedControl>(row.label));
  }
}

void BuildMenus(forms::Form& form) {
  forms::MenuItem* parents[4] = {};
  for (const MenuRow& row : kMenus) {
    parents[row.level] =
        &form.AddMenu(std::string(row.name), std::string(row.caption), parents[row.level - 1]);
    parents[row.level]->visible = row.level > 1;
  }
}

}  // namespace rotacasts::layout
