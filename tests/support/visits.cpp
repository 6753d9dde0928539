#include "support/visits.h"

#include <algorithm>
#include <random>

namespace rotacasts::testing {
namespace {

using Texts = std::vector<std::string>;

constexpr std::int32_t kGameState = 0x00C87598;
constexpr const char* kDll = "DLL Error!|";
constexpr const char* kAdded = "Success|Message added successfully!";
constexpr const char* kNotAdded = "Failed!|Could not add message!";
constexpr const char* kNotDeleted = "Failed!|Could not delete message!";
constexpr const char* kDeleteLine = "Delete Rotacasts (Message: ";

enum class Kind { Tick, Load, Stop, Listing, Lists, Option, Other };

class Explorer;

/// Something that is done to the plugin: an operation, or a visit inside one.
struct Act {
  const char* name;
  Kind kind;
  std::int32_t profile;  // 0: the one that the window shows
  void (*run)(Explorer&);
  // As a visit: whether another operation comes to what it comes to alone; whether a tick sends
  // what it sends alone.
  bool leavesAll = false;
  bool leavesTick = false;
};

struct Operation {
  Act act;
  Texts messages = {"a", "b", "c"};
  bool hasWindow = true;
};

class Explorer {
 public:
  explicit Explorer(VisitedPlugin& plugin) : plugin_(plugin), host_(plugin.host) {
    host_.insideCall = [this] { BeforeCall(); };
    host_.afterCall = [this] { Arrive("after", {}); };
    host_.insideFileCall = [this] { Arrive("file system", {}); };
    plugin_.onPlace = [this](const std::string& place) { AtPlace(place); };
  }
  ~Explorer() {
    host_.insideCall = host_.afterCall = host_.insideFileCall = nullptr;
    plugin_.onPlace = nullptr;
  }

  using Choose = std::function<const Act*(int place)>;
  /// Runs the operation with the visits chosen, if any, and checks what has come of it. Returns how
  /// many visits there were.
  int Run(const Operation& operation, Choose choose);
  /// What the last operation came to.
  const std::string& Result() const { return result_; }
  const Texts& SentForTwo() const { return sentByEnd_; }
  bool HasFailedOften() const { return failures_ > 8; }
  void Fail(const std::string& what) {
    ++failures_;
    ADD_FAILURE() << trail_ << ": " << what << "\n" << host_.MessageFile(2);
  }

  // What acts do.
  void Do(const Act& act);
  VisitedPlugin& Plugin() { return plugin_; }
  void Remote(const char* member, const HostValue& data);
  void List(std::int32_t folder);
  void Add();
  void Delete();
  void Move(const char* member, const char* position);
  void Option(const char* member, bool isSwitch);
  void Edit();
  void Make(Change change) { plugin_.Make(change, ""); }
  void Press();

 private:
  /// An act on the stack.
  struct Running {
    const Act* act;
    std::string file;  // the message file that it begins with; empty for a stopped profile
    unsigned turn;     // see turns_
    int changes;       // see changes_
    int sent = 0;
  };

  void Begin(const Act& act);
  void Begin(const Operation& operation);
  void CheckEnd();
  void CheckTexts();
  void CheckWindow();
  void Heal();

  void BeforeCall();
  void AtPlace(const std::string& place);
  void Arrive(const char* where, const std::string& place);
  void CheckSend(const std::string& call);
  void CheckError(const std::string& call);
  void CheckBox(const std::string& box);

  std::int32_t ProfileOf(const Act& act) const { return act.profile != 0 ? act.profile : shown_; }
  bool IsOvertaken(const Running& running) {
    return running.turn != turns_[ProfileOf(*running.act)];
  }
  /// Whether an act around the innermost one changes the same file's list.
  bool IsHeld() const;
  void Expect(bool isTrue, const std::string& what) {
    if (!isTrue) Fail(what);
  }
  Texts Stored(const std::string& path) const;
  std::string NewText() { return "new " + std::to_string(++texts_); }

  VisitedPlugin& plugin_;
  FakeHost& host_;
  Choose choose_;
  int places_ = 0;
  int visits_ = 0;
  int failures_ = 0;
  std::string trail_;
  std::string result_;
  Texts sent_;  // for profile 2
  Texts sentByEnd_;

  // What must be so.
  std::vector<Running> running_;
  std::map<std::int32_t, std::string> files_;  // by profile; empty for a stopped one
  std::map<std::int32_t, std::int32_t> data_;  // whose folder a profile has
  /// Counts what ends a tick of the profile that is under way.
  std::map<std::int32_t, unsigned> turns_;
  std::int32_t shown_ = 0;
  bool agrees_ = false;    // the window with the file of its profile
  bool hasMoved_ = false;  // remotely, which leaves the list's order
  bool canFail_ = false;   // a live text of the game
  std::map<std::string, Texts> expected_;
  std::string maybeGone_;
  std::string entry_;  // what was typed into the entry box
  int deletes_ = 0;
  int texts_ = 0;
  std::string state_;                            // after the last act that may change it
  std::optional<VisitedPlugin::Shown> stopped_;  // the window as a stop left it
  /// Counts what can make a message come again that was sent last: changes of lists, stops.
  int changes_ = 0;
  /// A message to profile 2, and the changes when its tick began.
  using Sent = std::pair<std::string, int>;
  Sent last_;
};

// --- what is done ---

void Explorer::Do(const Act& act) {
  Begin(act);
  running_.push_back({&act, files_[ProfileOf(act)], turns_[ProfileOf(act)], changes_});
  if (act.kind == Kind::Lists) ++changes_;
  act.run(*this);
  if (act.kind == Kind::Lists) ++changes_;
  if (act.kind != Kind::Tick || !IsOvertaken(running_.back())) {
    state_ = plugin_.State();
  } else if (act.profile == 2) {
    Expect(plugin_.State() == state_, "an overtaken tick has moved a counter, " + plugin_.State());
  }
  if (act.kind == Kind::Stop) stopped_ = plugin_.Window();
  running_.pop_back();
}

/// What the act makes of the profiles; no call comes before that.
void Explorer::Begin(const Act& act) {
  if (act.kind == Kind::Tick) ++turns_[act.profile];
  if (act.kind == Kind::Load) {
    ++turns_[act.profile];
    files_[act.profile] = PathOf(act.profile);
    data_[act.profile] = shown_ = act.profile;
    agrees_ = true;
  }
  if (act.kind == Kind::Stop) {
    for (auto& [profile, file] : files_) {
      if (act.profile != 0 && act.profile != profile) continue;
      ++turns_[profile];
      file.clear();
      if (shown_ == profile) agrees_ = false;
    }
    ++changes_;
  }
}

void Explorer::List(std::int32_t folder) {
  if (std::exchange(data_[2], folder) != folder) ++turns_[2];
  if (std::exchange(files_[2], PathOf(folder)) != PathOf(folder) && shown_ == 2) agrees_ = false;
  running_.back().file = files_[2];
  Expect(!plugin_.Call("GetMessagesRem", {2, ProfileData(folder, "JO")}).empty(), "no listing");
}

void Explorer::Add() {
  const std::string text = NewText();
  const std::string file = running_.back().file;
  const std::string reply =
      plugin_.Call("AddMessageRem", {2, ProfileData(2, "JO"), "<" + text + ">"});
  if (reply == "1") expected_[file].push_back(text);
  if (reply == "0") Expect(IsHeld(), "an add is refused");
  if (reply.empty()) Expect(file.empty(), "an add is not answered");
}

void Explorer::Delete() {
  const std::string file = running_.back().file;
  const std::string reply = plugin_.Call("DeleteMessageRem", {2, ProfileData(2, "JO"), "1"});
  if (reply == "1") ++deletes_;
  Expect(reply == "1" || file.empty() || IsHeld(), "a delete is not answered");
}

void Explorer::Move(const char* member, const char* position) {
  const std::string reply = plugin_.Call(member, {2, ProfileData(2, "JO"), position});
  if (reply == "1") hasMoved_ = true;
}

/// Sets the option to what the window does not show.
void Explorer::Option(const char* member, bool isSwitch) {
  const auto shown = plugin_.Window();
  const bool isSet = shown && (isSwitch ? shown->enable == "1" : shown->interval == "5");
  const char* const value = isSwitch ? (isSet ? "0" : "1") : (isSet ? "8" : "5");
  Expect(plugin_.Call(member, {2, ProfileData(2, "JO"), value}).empty(), "an option is answered");
}

/// Somebody appends a line in an editor.
void Explorer::Edit() {
  const std::string file = files_[2].empty() ? PathOf(2) : files_[2];
  const std::string text = "outside " + std::to_string(++texts_);
  host::IniText ini(host_.files[file]);
  ini.SetValue("Messages", std::to_string(1000 * texts_), text);
  host_.files[file] = ini.Bytes();
  expected_[file].push_back(text);
}

void Explorer::Press() {
  plugin_.Make(Change::Press, entry_ = NewText());
}

// clang-format off
const Act kTick{"tick of 2", Kind::Tick, 2, [](Explorer& e) { e.Plugin().Tick(2); }};
const Act kLoad2{"load 2", Kind::Load, 2, [](Explorer& e) { e.Plugin().Load(2); }};
const Act kUnload{"unload", Kind::Stop, 0, [](Explorer& e) { e.Plugin().Call("UnLoadInterface", {""}); }};
const Act kDisable{"disable 2", Kind::Stop, 2, [](Explorer& e) { e.Plugin().Call("DisableProfile", {2}); }};
const Act kList{"list 2", Kind::Listing, 2, [](Explorer& e) { e.List(2); }, true, true};
const Act kAdd{"remote add", Kind::Lists, 2, [](Explorer& e) { e.Add(); }, false, true};
const Act kEnable{"remote switch", Kind::Option, 2, [](Explorer& e) { e.Option("EnableRTRem", true); }};
const Act kInterval{"remote interval", Kind::Option, 2, [](Explorer& e) { e.Option("ChangeIntervalRem", false); }};
const Act kDown{"remote down", Kind::Lists, 2, [](Explorer& e) { e.Move("MoveMessageDownRem", "0"); }};
const Act kUp{"remote up", Kind::Lists, 2, [](Explorer& e) { e.Move("MoveMessageUpRem", "2"); }};
const Act kDelete{"remote delete", Kind::Lists, 2, [](Explorer& e) { e.Delete(); }};
const Act kHide{"hide", Kind::Other, 0, [](Explorer& e) { e.Plugin().Call("HideInterface", {}); }};
const Act kLoad3{"load 3", Kind::Load, 3, [](Explorer& e) { e.Plugin().Load(3); }, false, true};
const Act kAgain{"unload, load 2", Kind::Other, 2, [](Explorer& e) { e.Do(kUnload), e.Do(kLoad2); }};

/// What comes inside an operation.
const Act kVisits[] = {
    kTick,
    {"tick of 3", Kind::Tick, 3, [](Explorer& e) { e.Plugin().Tick(3); }, true, true},
    kLoad2, kLoad3, kDisable, kUnload, kAgain, kList,
    {"list 2 with other data", Kind::Listing, 2, [](Explorer& e) { e.List(1); }},
    kAdd, kEnable, kInterval, kDown, kUp, kDelete,
    {"edit from outside", Kind::Other, 0, [](Explorer& e) { e.Edit(); }, false, true}};

Act InWindow(const char* name, Kind kind, void (*run)(Explorer&)) {
  return {name, kind, 0, run};
}
const Operation kOperations[] = {
    {kTick},
    {{"tick that fails", Kind::Tick, 2, kTick.run}, {"a", "{ShowMostKills}", "c"}},
    {{"tick with a live text", Kind::Tick, 2, kTick.run}, {"a", "{ShowNextMap}", "c"}},
    {{"tick over an empty message", Kind::Tick, 2, kTick.run}, {"a", "", "c"}},
    {kLoad2}, {{"first load 2", Kind::Load, 2, kLoad2.run}, {"a", "b", "c"}, false},
    {kHide}, {{"hide a new window", Kind::Other, 0, kHide.run}, {"a", "b", "c"}, false},
    {kUnload}, {kDisable}, {kList}, {kAdd}, {kEnable}, {kInterval}, {kDown}, {kUp}, {kDelete},
    {InWindow("press", Kind::Other, [](Explorer& e) { e.Press(); })},
    {InWindow("add", Kind::Lists, [](Explorer& e) { e.Make(Change::Release); })},
    {InWindow("up", Kind::Lists, [](Explorer& e) { e.Make(Change::Up); })},
    {InWindow("down", Kind::Lists, [](Explorer& e) { e.Make(Change::Down); })},
    {InWindow("delete", Kind::Lists, [](Explorer& e) { e.Make(Change::Delete); })},
    {InWindow("switch", Kind::Option, [](Explorer& e) { e.Make(Change::Switch); })},
    {InWindow("interval", Kind::Option, [](Explorer& e) { e.Make(Change::Interval); })},
    {InWindow("no interval", Kind::Other, [](Explorer& e) { e.Make(Change::NoInterval); })},
    {InWindow("token", Kind::Other, [](Explorer& e) { e.Make(Change::Token); })}};
// clang-format on

// --- one run ---

void Explorer::Begin(const Operation& operation) {
  canFail_ = false;
  expected_ = {
      {PathOf(1), {"p", "q", "r"}}, {PathOf(2), operation.messages}, {PathOf(3), {"x", "y"}}};
  for (const auto& [path, texts] : expected_) {
    host_.files[path] = MessageFileBytes(texts, "1", path == PathOf(3) ? "0" : "1");
  }
  std::erase_if(host_.files, [](const auto& file) { return file.first.ends_with(".txt"); });
  host_.folders = {"C:\\Host"};
  host_.longs = {{kGameState, 2}, {0x00C86FDC, 0x5000}, {0x5004, 1},
                 {0x500C, 0},     {0x5014, 0},          {0x02551118, 0}};
  host_.texts[1044] = "Rio";
  maybeGone_ = operation.act.name == std::string("delete") ? "b" : "";
  deletes_ = texts_ = visits_ = places_ = 0;
  hasMoved_ = false;
  last_ = {};
  if (operation.hasWindow) {
    Do(kLoad3);
    Do(kLoad2);
    Do(kTick);
    if (operation.act.name == std::string("add")) Press();
  }
  host_.calls.clear();
  host_.logged.clear();
  host_.boxes.clear();
  host_.sent.clear();
  sent_.clear();
  stopped_.reset();
  canFail_ = operation.act.name == std::string("tick that fails");
}

int Explorer::Run(const Operation& operation, Choose choose) {
  trail_ = operation.act.name;
  Begin(operation);
  choose_ = std::move(choose);
  Do(operation.act);
  choose_ = nullptr;
  CheckEnd();
  Heal();
  return visits_;
}

void Explorer::CheckEnd() {
  const auto shown = plugin_.Window();
  result_ = host_.MessageFile(2) + plugin_.State();
  sentByEnd_ = sent_;
  for (const std::string& text : sent_) result_ += "sent " + text + "\n";
  if (shown) {
    for (const std::string& row : shown->rows) result_ += row + "\n";
    result_ += shown->enable + shown->interval;
  }
  CheckTexts();
  CheckWindow();
  const std::string state = plugin_.State();
  const bool isAsStopped = state.empty() || state == "0 0 no timer";
  Expect(!files_[2].empty() || isAsStopped, "stopped, but " + state);
}

void Explorer::CheckTexts() {
  Texts gone;
  for (const auto& [path, bytes] : host_.files) {
    if (!path.ends_with(".txt")) continue;
    for (auto at = bytes.find(kDeleteLine); at != bytes.npos; at = bytes.find(kDeleteLine, at)) {
      at += std::string(kDeleteLine).size();
      gone.push_back(bytes.substr(at, bytes.find(')', at) - at));
    }
  }
  Expect(static_cast<int>(gone.size()) == deletes_, "deletions are not logged");
  for (auto& [path, expected] : expected_) {
    Texts stored = Stored(path);
    for (const std::string& text : gone) std::erase(expected, text);
    if (!maybeGone_.empty() && std::ranges::count(stored, maybeGone_) == 0) {
      std::erase(expected, maybeGone_);
    }
    std::erase(expected, "");
    std::erase(stored, "");  // which the next renumbering drops
    Expect(std::ranges::is_permutation(stored, expected),
           "lost, doubled or strange in " + path + "\n" + host_.files[path]);
  }
}

void Explorer::CheckWindow() {
  const auto shown = plugin_.Window();
  const std::string file = files_[shown_];
  if (!shown) return;
  if (file.empty() && stopped_) Expect(*shown == *stopped_, "a stopped profile's window changes");
  if (file.empty() || !agrees_) return;
  Texts rows = shown->rows;
  Texts stored = Stored(file);
  for (Texts* texts : {&rows, &stored}) {
    std::erase_if(*texts, [](const std::string& text) { return text.starts_with("outside"); });
    if (hasMoved_) std::ranges::sort(*texts);
  }
  std::string listed;
  for (const std::string& row : rows) listed += row + " ";
  Expect(rows == stored, "the list shows " + listed);
  const host::IniText ini(host_.files[file]);
  Expect(shown->enable == ini.Value("Options", "Enable"), "the switch shows " + shown->enable);
  Expect(shown->interval == ini.Value("Options", "Interval"),
         "the interval shows " + shown->interval);
}

/// The plugin works again once its profile is loaded, and leaves nothing behind.
void Explorer::Heal() {
  trail_ += "; then";
  canFail_ = false;
  host_.boxes.clear();
  Do(kLoad2);
  const Act heal{"heal", Kind::Other, 2, [](Explorer& e) {
                   e.Plugin().Call("EnableRTRem", {2, ProfileData(2, "JO"), "1"});
                   e.Plugin().Call("ChangeIntervalRem", {2, ProfileData(2, "JO"), "1"});
                   const std::string reply =
                       e.Plugin().Call("AddMessageRem", {2, ProfileData(2, "JO"), "<healed>"});
                   if (reply != "1") e.Fail("an add is answered by '" + reply + "'");
                 }};
  Do(heal);
  const auto shown = plugin_.Window();
  Expect(shown && shown->rows == Stored(PathOf(2)), "the list does not show the file");
  host_.longs.erase(0x5000);
  host_.sent.clear();
  canFail_ = true;  // its live text may have come round
  for (int i = 0; i < 2 && host_.sent.empty(); ++i) Do(kTick);
  Expect(host_.sent.size() == 1, "a tick sends nothing");
  Do(kUnload);
  Expect(plugin_.IsGone(), "something stays");
}

// --- places ---

void Explorer::BeforeCall() {
  const std::string call = host_.calls.back();
  if (call.starts_with("AddMsg")) CheckSend(call);
  if (call.starts_with("LogError")) CheckError(call);
  Arrive("before", {});
}

void Explorer::AtPlace(const std::string& place) {
  if (place.find('|') != place.npos) CheckBox(place);
  Arrive("in", place);
  // What is chosen from a menu begins when it is closed.
  if (place == "menu" && !running_.empty()) running_.back().file = files_[shown_];
}

void Explorer::Arrive(const char* where, const std::string& place) {
  if (!choose_) return;
  const Act* visit = choose_(++places_);
  if (visit == nullptr) return;
  ++visits_;
  trail_ += std::string("; ") + where + " " +
            (!place.empty() || host_.calls.empty() ? place : host_.calls.back()) + " (place " +
            std::to_string(places_) + "): " + visit->name;
  Do(*visit);
}

bool Explorer::IsHeld() const {
  const Running& innermost = running_.back();
  return innermost.act->kind == Kind::Lists &&
         std::any_of(running_.begin(), running_.end() - 1, [&](const Running& running) {
           return running.act->kind == Kind::Lists && running.file == innermost.file;
         });
}

/// AddMsgB(index, target, text, ...
void Explorer::CheckSend(const std::string& call) {
  const std::string profile = call.substr(call.find('(') + 1, 1);
  const auto begin = call.find(", ", call.find(", ") + 2) + 2;
  const std::string text = call.substr(begin, call.find(", ", begin) - begin);
  Running& tick = running_.back();
  const bool isItsTick =
      tick.act->kind == Kind::Tick && std::to_string(tick.act->profile) == profile;
  Expect(isItsTick && ++tick.sent == 1, "sends more than one message: " + text);
  Expect(!IsOvertaken(tick), "an overtaken tick sends " + text);
  if (profile != "2") return;
  sent_.push_back(text);
  Expect(last_ != Sent(text, changes_), "sends the same message twice: " + text);
  last_ = {text, tick.changes};
}

/// LogError(module, procedure, number, line)
void Explorer::CheckError(const std::string& call) {
  const auto begin = call.find(", ", call.find(", ") + 2) + 2;
  const int number = std::stoi(call.substr(begin));
  const Running& innermost = running_.back();
  const bool isStopped = innermost.file.empty() && innermost.act->kind != Kind::Stop;
  // A tick that comes before a refused interval is put back reads what was typed.
  const bool isTyped = innermost.act->kind == Kind::Tick && plugin_.Window()->interval == "x";
  Expect((number == 57 && canFail_) || (number == 70 && IsHeld()) ||
             ((number == 76 || number == 9) && isStopped) || (number == 13 && isTyped),
         "nothing has failed, but " + call);
}

void Explorer::CheckBox(const std::string& box) {
  const Running& innermost = running_.back();
  const bool isAdd = innermost.act->name == std::string("add");
  if (box.starts_with(kDll)) return;  // it was logged
  if (isAdd && box == kAdded) {
    expected_[innermost.file].push_back(entry_);
  } else if (isAdd && box == kNotAdded) {
    Expect(innermost.file.empty() || IsHeld(), box);
  } else {
    Expect(box == kNotDeleted && innermost.act->name == std::string("delete") && IsHeld(), box);
  }
}

Texts Explorer::Stored(const std::string& path) const {
  Texts texts;
  const auto found = host_.files.find(path);
  const host::IniText ini(found != host_.files.end() ? found->second : "");
  for (const auto& line : ini.Lines("Messages")) texts.emplace_back(line.value);
  return texts;
}

}  // namespace

int VisitEveryPlace(VisitedPlugin& plugin, int step) {
  Explorer explorer(plugin);
  int runs = 0;
  for (const Operation& operation : kOperations) {
    explorer.Run(operation, nullptr);
    const std::string alone = explorer.Result();
    const Texts sentAlone = explorer.SentForTwo();
    for (const Act& visit : kVisits) {
      const auto at = [&](int chosen) {
        return [&visit, chosen](int place) { return place == chosen ? &visit : nullptr; };
      };
      for (int place = 1 + runs % step; explorer.Run(operation, at(place)) > 0; place += step) {
        ++runs;
        if (visit.leavesAll && explorer.Result() != alone) {
          explorer.Fail("is not\n" + alone + "\nbut\n" + explorer.Result());
        }
        if (operation.act.kind == Kind::Tick && visit.leavesTick &&
            explorer.SentForTwo() != sentAlone) {
          explorer.Fail("does not send what it sends alone");
        }
        if (explorer.HasFailedOften()) return runs;
      }
    }
  }
  return runs;
}

int VisitAtRandom(VisitedPlugin& plugin, int runs, unsigned seed) {
  Explorer explorer(plugin);
  std::mt19937 random(seed);
  int visits = 0;
  int depth = 0;
  static_cast<void>(depth);
  for (int run = 0; run < runs && !explorer.HasFailedOften(); ++run) {
    int left = 4;
    const Operation& operation = kOperations[random() % std::size(kOperations)];
    visits += explorer.Run(operation, [&](int) -> const Act* {
      if (left == 0 || random() % 8 != 0) return nullptr;
      --left;
      return &kVisits[random() % std::size(kVisits)];
    });
  }
  return visits;
}

}  // namespace rotacasts::testing
