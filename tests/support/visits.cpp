#include "support/visits.h"

#include <algorithm>
#include <random>

#include "store/message_file.h"

namespace rotacasts {
inline namespace testing {
namespace {

/// What of another operation comes to the same with a visit as without.
enum class Leaves { Nothing, WhatIsSent, Everything };
class Explorer;

/// Something that is done to the plugin: an operation, or a visit inside one.
struct Act {
  const char* name;
  void (*run)(Explorer&);
  Leaves leaves = Leaves::Nothing;
};

const Texts kMessages = {"a", std::string(70, 'b'), "c"};  // the second is too long for a row

struct Operation {
  Act act;
  Texts messages = kMessages;
  bool hasWindow = true;
};

/// One life of the plugin: operations, with visits inside, and what must be so afterwards.
class Explorer {
 public:
  /// `failures` counts what is not so. `random` chooses positions; without it each command has its
  /// own.
  Explorer(VisitedPlugin& plugin, int& failures, std::mt19937* random = nullptr)
      : failures_(failures), random_(random), plugin_(plugin), host_(plugin.fakes) {
    host_.insideCall = [this] { BeforeCall(); };
    host_.afterCall = [this] { Arrive("after ", host_.calls.back()); };
    host_.insideFileCall = [this] { Arrive("beside ", "a question to the file system"); };
    plugin_.onPlace = [this](const std::string& place) { AtPlace(place); };
  }
  ~Explorer() {
    host_.insideCall = host_.afterCall = host_.insideFileCall = nullptr;
    plugin_.onPlace = nullptr;
  }

  /// The visit at a place, counted from 1; null for none.
  using Choose = std::function<const Act*(int place)>;
  /// Runs the operations with the visits that are chosen, checks what has come of each, and that
  /// all works afterwards.
  void Live(const std::vector<const Operation*>& operations, const Choose& choose) {
    Begin(*operations.front());
    for (const Operation* operation : operations) {
      trail_ += std::string(trail_.empty() ? "" : "; then ") + operation->act.name;
      stopped_.clear();
      sentNow_.clear();
      host_.calls = {"no call"};
      choose_ = choose;
      places = 0;
      operation->act.run(*this);
      choose_ = nullptr;
      CheckTexts();
      CheckWindow();
      host_.failAtCall = 0;  // there was no next call
      const std::string counters = plugin_.Counters();
      Expect(!files_[2].empty() || counters.empty() || counters == "0 0 no timer", counters);
      sent = sentNow_;
      result = host_.MessageFile(2) + counters + ::testing::PrintToString(plugin_.Shown());
    }
    Heal();
  }
  void Expect(bool isTrue, const std::string& what) {
    if (isTrue) return;
    ++failures_;
    ADD_FAILURE() << trail_ << ": " << what << "\n" << host_.MessageFile(2);
  }
  int visits = 0;
  // What the last operation came to: how many places it has, what it left, what it sent for
  // profile 2.
  int places = 0;
  std::string result;
  Texts sent;

  // --- what acts do ---

  void Tick(std::int32_t index) {
    ++turns_[index];
    Do(Kind::Tick, index, [&] { plugin_.Tick(static_cast<std::int16_t>(index)); });
  }
  void Load(std::int32_t index) {
    ++turns_[index];
    files_[index] = index > 0 ? PathOf(index) : "";  // there is no profile below 1
    data_[index] = shown_ = index;
    agrees_ = true;
    isUnloaded_ = false;
    Do(Kind::Other, index, [&] { plugin_.Load(index); });
  }
  void Hide() {
    isUnloaded_ = false;
    Do(Kind::Other, shown_, [&] { plugin_.Call("HideInterface", {}); });
  }
  void Disable() { Stop(2, "DisableProfile", 2); }
  void Unload() {
    Stop(0, "UnLoadInterface", "");
    isUnloaded_ = true;
  }
  void List(std::int32_t folder) {
    if (std::exchange(data_[2], folder) != folder) ++turns_[2];
    const bool isOther = std::exchange(files_[2], PathOf(folder)) != PathOf(folder);
    agrees_ = agrees_ && !(isOther && shown_ == 2);
    Do(Kind::Other, 2, [&] { plugin_.Call("GetMessagesRem", {2, Data(folder, "JO")}); });
  }
  void Add() {
    const std::string text = NewText();
    const std::string file = files_[2];
    const bool isStored = Change("AddMessageRem", "<" + text + ">") == "1";
    if (isStored || hasFailed_) (isStored ? expected_[file] : unsure_).push_back(text);
  }
  void Delete() {
    const Texts texts = Stored(files_[2]);
    if (Change("DeleteMessageRem", At(1)) == "1") ++deletes_;
    if (hasFailed_ && texts.size() > 1) unsure_.push_back(texts[1]);
  }
  void Move(const char* member, int position) {
    if (Change(member, At(position)) == "1") hasMoved_ = true;
  }
  /// Sets the option to what the window does not show.
  void SetOption(const char* member, std::size_t fromEnd, const char* value, const char* other) {
    const Texts shown = plugin_.Shown();
    const bool isShown = !shown.empty() && *(shown.end() - static_cast<int>(fromEnd)) == value;
    Do(Kind::Other, 2, [&] { Remote(member, isShown ? other : value); });
  }
  /// Somebody appends a line in an editor.
  void Edit() {
    const std::string file = files_[2].empty() ? PathOf(2) : files_[2];
    expected_[file].push_back("outside " + std::to_string(++texts_));
    host::IniText ini(host_.files[file]);
    ini.SetValue("Messages", std::to_string(1000 * texts_), expected_[file].back());
    host_.files[file] = ini.Bytes();
  }
  void FreeParent() {
    for (auto& [profile, turn] : turns_) ++turn;
    agrees_ = false;
    Do(Kind::Other, shown_, [&] { plugin_.FreeParent(); });
  }
  void FailNextCall() {
    host_.failAtCall = 1;
    canFail_ = hasFailed_ = true;
  }
  void InWindow(const char* control, const std::string& text = "") {
    Do(Kind::Other, shown_, [&] { plugin_.Act(control, text); });
  }
  void InList(const char* control) {
    Do(Kind::ChangesList, shown_, [&] { plugin_.Act(control, ""); });
  }
  void Press() { InWindow("cmdAdd", entry_ = NewText().substr(0, kMessageCharacters)); }
  void DeleteInList() {
    if (const Texts shown = plugin_.Shown(); shown.size() > 3) unsure_.push_back(shown[1]);
    InList("mnuDelete");
  }

 private:
  enum class Kind { Tick, ChangesList, Other };
  /// An act on the stack.
  struct Running {
    Kind kind;
    std::int32_t profile;
    std::string file;  // the message file that it begins with; empty for a stopped profile
    unsigned turn;     // see turns_
    int changes;       // see changes_
    int sent = 0;
  };

  template <class Body>
  void Do(Kind kind, std::int32_t profile, const Body& body) {
    if (kind == Kind::ChangesList) ++changes_;
    running_.push_back({kind, profile, files_[profile], turns_[profile], changes_});
    body();
    if (kind == Kind::ChangesList) ++changes_;
    if (kind == Kind::Tick && profile == 2 && IsOvertaken()) {
      Expect(plugin_.Counters() == counters_, "an overtaken tick counts: " + plugin_.Counters());
    }
    counters_ = plugin_.Counters();
    running_.pop_back();
  }

  /// Stops a profile, or every one for 0.
  void Stop(std::int32_t index, const char* member, const HostValue& argument) {
    for (auto& [profile, file] : files_) {
      if (index != 0 && index != profile) continue;
      ++turns_[profile];
      file.clear();
    }
    ++changes_;
    agrees_ = agrees_ && !files_[shown_].empty();
    Do(Kind::Other, index, [&] { plugin_.Call(member, {argument}); });
    stopped_ = plugin_.Shown();
  }

  std::string Remote(const char* member, const HostValue& data) {
    return plugin_.Call(member, {2, Data(2, "JO"), data});
  }
  /// A remote change of the list, which only a stop, another change and a failure can refuse.
  std::string Change(const char* member, const HostValue& data) {
    std::string reply;
    Do(Kind::ChangesList, 2, [&] {
      reply = Remote(member, data);
      const bool isAtTheEnd = reply == "0" && std::string_view(member).starts_with("Move");
      Expect(reply == "1" || isAtTheEnd || IsRefused(), member + (" answers " + reply));
      isNoticed_ = isNoticed_ || reply != "1" || member == std::string_view("DeleteMessageRem");
    });
    return reply;
  }
  std::string At(int usual) const {
    return std::to_string(random_ != nullptr ? static_cast<int>((*random_)() % 5) : usual);
  }
  /// Unlike any other, and often too long for a row.
  std::string NewText() {
    ++texts_;
    return "new " + std::to_string(texts_) + std::string(texts_ * 37 % 90, '=');
  }
  Texts Stored(const std::string& path, std::size_t characters = std::string::npos) const {
    Texts texts;
    const host::IniText ini(host_.files[path]);
    for (const auto& line : ini.Lines("Messages")) {
      texts.emplace_back(line.value.substr(0, characters));
    }
    return texts;
  }

  // --- a life ---

  void Begin(const Operation& operation) {
    expected_ = {
        {PathOf(1), {"p", "q", "r"}}, {PathOf(2), operation.messages}, {PathOf(3), {"x", "y"}}};
    std::erase_if(host_.files, [](const auto& file) { return file.first.ends_with(".txt"); });
    for (const auto& [path, texts] : expected_) {
      host_.files[path] = MessageFileBytes(texts, "1", path == PathOf(3) ? "0" : "1");
    }
    host_.folders = {"C:\\Host"};
    host_.longs = {{0x00C87598, 2}, {0x00C86FDC, 0x5000}, {0x5004, 1},
                   {0x500C, 0},     {0x5014, 0},          {0x02551118, 0}};
    host_.texts[1044] = "Rio";
    Load(3), Load(2), Tick(2);
    if (!operation.hasWindow) Unload();
    canFail_ = operation.messages[1] == "{ShowMostKills}";
  }

  /// The plugin works again once its profile is loaded, and leaves nothing behind.
  void Heal() {
    trail_ += "; healed";
    canFail_ = false;
    Load(2);
    Do(Kind::Other, 2, [&] {
      for (const char* member : {"EnableRTRem", "ChangeIntervalRem"}) Remote(member, "1");
      Expect(Remote("AddMessageRem", "<healed>") == "1", "an add is not stored");
    });
    Texts rows = plugin_.Shown();
    rows.resize(rows.size() - std::min<std::size_t>(rows.size(), 2));
    Expect(rows == Stored(PathOf(2), kMessageCharacters), "the list does not show the file");
    sentNow_.clear();
    canFail_ = true;  // the list's own live text
    for (int i = 0; i < 2 && sentNow_.empty(); ++i) Tick(2);
    Expect(!sentNow_.empty(), "a tick sends nothing");
    Unload();
    Expect(plugin_.IsGone(), "something stays");
  }

  void CheckTexts() {
    constexpr std::string_view kDeleted = "Delete Rotacasts (Message: ";
    Texts gone;
    for (const auto& [path, bytes] : host_.files) {
      if (!path.ends_with(".txt")) continue;
      for (auto at = bytes.find(kDeleted); at != bytes.npos; at = bytes.find(kDeleted, at)) {
        at += kDeleted.size();
        gone.push_back(bytes.substr(at, bytes.find(") from", at) - at));
      }
    }
    Expect(hasFailed_ || static_cast<int>(gone.size()) == deletes_, "deletions are not logged");
    for (auto& [path, expected] : expected_) {
      Texts stored = Stored(path);
      for (const std::string& text : gone) std::erase(expected, text);
      for (const std::string& text : unsure_) {
        const auto is = [&](const std::string& one) { return one.starts_with(text); };
        const auto found = std::ranges::find_if(stored, is);
        const bool isUnknown = hasFailed_ && std::ranges::none_of(expected, is);
        if (found == stored.end()) std::erase_if(expected, is);
        if (found != stored.end() && isUnknown) expected.push_back(*found);
      }
      for (Texts* texts : {&expected, &stored}) std::erase(*texts, "");  // renumbering drops them
      if (hasFailed_ && !unsure_.empty()) {  // in the midst of renumbering
        std::ranges::sort(stored);
        stored.erase(std::unique(stored.begin(), stored.end()), stored.end());
      }
      Expect(std::ranges::is_permutation(stored, expected),
             "lost, doubled or strange: " + host_.files[path]);
    }
    Expect(!hasFailed_ || host_.failAtCall > 0 || isNoticed_, "nobody is told");
  }

  void CheckWindow() {
    Texts shown = plugin_.Shown();
    const std::string& file = files_[shown_];
    if (shown.empty() || hasFailed_) return;
    Expect(!isUnloaded_, "there is a window after the unload");
    Expect(!file.empty() || stopped_.empty() || shown == stopped_, "a stopped profile's changes");
    if (file.empty() || !agrees_) return;
    const host::IniText ini(host_.files[file]);
    Texts stored = Stored(file, kMessageCharacters);
    for (const char* option : {"Enable", "Interval"}) {
      stored.emplace_back(ini.Value("Options", option).value_or("none"));
    }
    for (Texts* texts : {&shown, &stored}) {
      std::erase_if(*texts, [](const auto& text) { return text.starts_with("outside"); });
      if (hasMoved_) std::ranges::sort(*texts);
    }
    Expect(shown == stored, "the window shows " + ::testing::PrintToString(shown));
  }

  // --- places ---

  void BeforeCall() {
    const std::string call = host_.calls.back();
    const std::size_t first = call.find('(') + 1;
    const std::size_t third = call.find(", ", call.find(", ") + 2) + 2;  // argument
    if (call.starts_with("AddMsg")) {
      CheckSend(call.substr(first, 1), call.substr(third, call.find(", ", third) - third));
    }
    if (call.starts_with("LogError")) CheckError(call, std::stoi(call.substr(third)));
    Arrive("before ", call);
  }
  void AtPlace(const std::string& place) {
    if (place.starts_with("Success|Message added")) {
      expected_[running_.back().file].push_back(entry_);
    } else if (place.find("|Could not") != place.npos) {
      Expect(IsRefused(), place);
      isNoticed_ = true;
      if (hasFailed_ && !entry_.empty()) unsure_.push_back(entry_);
    } else {  // an error's box has its line in the log
      const bool isBox = place.find('|') != place.npos;
      Expect(!isBox || place.starts_with("DLL Error!") || hasFailed_, place);
    }
    Arrive("in ", place);
    if (place == "menu") running_.back().file = files_[shown_];  // what is chosen begins then
  }
  void Arrive(const char* where, const std::string& place) {
    const Act* const visit = choose_ ? choose_(++places) : nullptr;
    if (visit == nullptr) return;
    ++visits;
    trail_ += "; " + (where + place) + " (place " + std::to_string(places) + "), " + visit->name;
    visit->run(*this);
  }

  bool IsOvertaken() { return running_.back().turn != turns_[running_.back().profile]; }
  /// Whether a list is being changed, which shows a message twice for a moment.
  bool IsInChange() const {
    return std::ranges::any_of(
        running_, [](const Running& running) { return running.kind == Kind::ChangesList; });
  }
  /// Whether an act around the innermost one changes the same file's list.
  bool IsHeld() const {
    const Running& innermost = running_.back();
    return innermost.kind == Kind::ChangesList &&
           std::any_of(running_.begin(), running_.end() - 1, [&](const Running& outer) {
             return outer.kind == Kind::ChangesList && outer.file == innermost.file;
           });
  }
  bool IsRefused() const { return running_.back().file.empty() || IsHeld() || hasFailed_; }

  void CheckSend(const std::string& profile, const std::string& text) {
    Running& tick = running_.back();
    const bool isItsTick = tick.kind == Kind::Tick && std::to_string(tick.profile) == profile;
    Expect(isItsTick && ++tick.sent == 1, "sends one too many: " + text);
    Expect(!IsOvertaken(), "an overtaken tick sends " + text);
    if (profile != "2") return;
    sentNow_.push_back(text);
    const bool isSame = lastSent_ == std::pair(text, changes_) && Stored(files_[2]).size() > 1;
    Expect(!isSame || IsInChange(), "sends the same message twice: " + text);
    lastSent_ = {text, tick.changes};
  }
  void CheckError(const std::string& call, int number) {
    const Running& innermost = running_.back();
    const Texts shown = plugin_.Shown();
    // A tick can come before a refused interval is put back.
    const bool isTyped = innermost.kind == Kind::Tick && !shown.empty() && shown.back() == "x";
    Expect((number == 57 && canFail_) || (number == 70 && IsHeld()) ||
               ((number == 76 || number == 9) && innermost.file.empty()) ||
               (number == 13 && isTyped),
           "nothing has failed, but " + call);
    isNoticed_ = true;
  }

  int& failures_;
  std::mt19937* const random_;
  VisitedPlugin& plugin_;
  FakeHost& host_;
  Choose choose_;
  std::string trail_;

  // What must be so.
  std::vector<Running> running_;
  std::map<std::int32_t, std::string> files_;  // by profile; empty for a stopped one
  std::map<std::int32_t, std::int32_t> data_;  // whose folder a profile has
  std::map<std::int32_t, unsigned> turns_;     // counts what ends a tick that is under way
  Texts sentNow_;                              // for profile 2
  int changes_ = 0;                            // counts what can bring the same message again
  std::pair<std::string, int> lastSent_;       // for profile 2, with the changes before its tick
  std::string counters_;                       // after the last act
  std::int32_t shown_ = 0;                     // the window's profile
  bool agrees_ = false;                        // the window, with that profile's file
  bool isUnloaded_ = false;                    // and neither loaded nor hidden since
  bool hasMoved_ = false;                      // remotely, which leaves the list's order
  Texts stopped_;                              // the window as a stop left it
  bool canFail_ = false;                       // a live text or a call
  bool hasFailed_ = false;                     // a call
  bool isNoticed_ = false;                     // the failure, by someone
  std::map<std::string, Texts> expected_;      // in each file, in any order
  Texts unsure_;                               // what may be there or not
  std::string entry_;                          // what was typed before the Add button's press
  int deletes_ = 0;                            // that were answered with "1"
  unsigned texts_ = 0;
};

// clang-format off
const Act kTick{"tick of 2", [](Explorer& e) { e.Tick(2); }};
const Act kLoad2{"load 2", [](Explorer& e) { e.Load(2); }};
const Act kHide{"hide", [](Explorer& e) { e.Hide(); }};
const Act kUnload{"unload", [](Explorer& e) { e.Unload(); }};
const Act kDisable{"disable 2", [](Explorer& e) { e.Disable(); }};
const Act kList{"list 2", [](Explorer& e) { e.List(2); }, Leaves::Everything};
const Act kAdd{"remote add", [](Explorer& e) { e.Add(); }, Leaves::WhatIsSent};
const Act kDelete{"remote delete", [](Explorer& e) { e.Delete(); }};
const Act kDown{"remote down", [](Explorer& e) { e.Move("MoveMessageDownRem", 0); }};
const Act kUp{"remote up", [](Explorer& e) { e.Move("MoveMessageUpRem", 2); }};
const Act kSwitch{"remote switch", [](Explorer& e) { e.SetOption("EnableRTRem", 2, "1", "0"); }};
const Act kInterval{"remote interval", [](Explorer& e) { e.SetOption("ChangeIntervalRem", 1, "5", "8"); }};

/// What comes inside an operation.
const Act kVisits[] = {
    kTick, kLoad2, kDisable, kUnload, kList, kAdd, kDelete, kDown, kUp, kSwitch, kInterval,
    {"tick of 3", [](Explorer& e) { e.Tick(3); }, Leaves::Everything},
    {"load 3", [](Explorer& e) { e.Load(3); }, Leaves::WhatIsSent},
    {"unload and load 2", [](Explorer& e) { e.Unload(), e.Load(2); }},
    {"list 2 with other data", [](Explorer& e) { e.List(1); }},
    {"edit from outside", [](Explorer& e) { e.Edit(); }, Leaves::WhatIsSent},
    {"end of the window's parent", [](Explorer& e) { e.FreeParent(); }},
    {"failure of the next call", [](Explorer& e) { e.FailNextCall(); }}};

const Operation kOperations[] = {
    {kTick}, {kTick, {"a", "{ShowMostKills}", "c"}}, {kTick, {"a", "{ShowNextMap}", "c"}}, {kTick, {"a", "", "c"}},
    {kLoad2}, {kLoad2, kMessages, false}, {kHide}, {kHide, kMessages, false},
    {kUnload}, {kDisable}, {kList}, {kAdd}, {kDelete}, {kDown}, {kUp}, {kSwitch}, {kInterval},
    {{"press", [](Explorer& e) { e.Press(); }}},
    {{"press and add", [](Explorer& e) { e.Press(), e.InList("cmdAdd"); }}},
    {{"up", [](Explorer& e) { e.InList("mnuUp"); }}},
    {{"down", [](Explorer& e) { e.InList("mnuDown"); }}},
    {{"delete", [](Explorer& e) { e.DeleteInList(); }}},
    {{"switch", [](Explorer& e) { e.InWindow("chkAuto"); }}},
    {{"interval", [](Explorer& e) { e.InWindow("txtInterval", "5"); }}},
    {{"no interval", [](Explorer& e) { e.InWindow("txtInterval", "x"); }}},
    {{"token", [](Explorer& e) { e.InWindow("mnuNextMap"); }}},
    {{"load none", [](Explorer& e) { e.Load(-1); }}, kMessages, false}};
// clang-format on

constexpr int kEnoughFailures = 8;

}  // namespace

int VisitEveryPlace(VisitedPlugin& plugin, int step) {
  int failures = 0;
  int runs = 0;
  int combinations = 0;
  for (const Operation& operation : kOperations) {
    Explorer alone(plugin, failures);
    alone.Live({&operation}, [](int) { return nullptr; });
    for (const Act& visit : kVisits) {
      for (int place = 1; place <= alone.places; ++place) {
        if (combinations++ % step != 0) continue;
        Explorer explorer(plugin, failures);
        explorer.Live({&operation}, [&](int now) { return now == place ? &visit : nullptr; });
        runs += explorer.visits;
        explorer.Expect(visit.leaves != Leaves::Everything || explorer.result == alone.result,
                        "comes to\n" + explorer.result + "and alone to\n" + alone.result);
        const bool isTick = operation.act.run == kTick.run;
        explorer.Expect(!isTick || visit.leaves == Leaves::Nothing || explorer.sent == alone.sent,
                        "sends something else");
        if (failures > kEnoughFailures) return runs;
      }
    }
  }
  return runs;
}

int VisitAtRandom(VisitedPlugin& plugin, int lives, unsigned seed) {
  constexpr int kOperationsALife = 4;
  constexpr int kVisitsALife = 6;
  std::mt19937 random(seed);
  int failures = 0;
  int visits = 0;
  for (int life = 0; life < lives && failures < kEnoughFailures; ++life) {
    std::vector<const Operation*> operations(kOperationsALife);
    for (auto& operation : operations) {  // without "load none"
      operation = &kOperations[random() % (std::size(kOperations) - 1)];
    }
    int left = kVisitsALife;
    Explorer explorer(plugin, failures, &random);
    explorer.Live(operations, [&](int) -> const Act* {
      if (left == 0 || random() % 16 != 0) return nullptr;
      --left;
      return &kVisits[random() % (std::size(kVisits) - 1)];  // without failures
    });
    visits += explorer.visits;
  }
  return visits;
}

}  // namespace testing
}  // namespace rotacasts
