#include "host/headless_plugin.h"

#include <algorithm>
#include <utility>

#include "broadcast/schedule.h"
#include "files/native_files.h"
#include "host/message_list.h"
#include "plugin/remote_operations.h"
#include "services/host_folder.h"
#include "siblings/host_file_system.h"
#include "siblings/plain_words.h"
#include "store/list_commands.h"
#include "ui/layout.h"

namespace rotacasts::host {

using headless::TimerLoop;

/// One profile's plugin, and the components that it gets from the host.
class HeadlessPlugin::Instance final : public ComponentFactory {
 public:
  Instance(HostProfiles& profiles, Troubles& troubles, std::int32_t index,
           std::chrono::nanoseconds minute);

  void RunDue();
  void Load(forms::WindowHandle parent, const HostValue& data);
  /// Calls a remote operation. If it has not found out itself that something could not be stored,
  /// the reply is empty and the window is loaded again from the file.
  Reply Answer(const std::function<std::string()>& operation, const HostValue& data);
  Progress GetProgress() const;

  std::unique_ptr<UtilityComponent> CreateUtility() override;
  std::unique_ptr<MemoryComponent> CreateMemory() override {
    return profiles_.Components().CreateMemory();
  }
  std::unique_ptr<FileSystemObject> CreateFileSystem() override {
    return std::make_unique<HostFileSystem>(files_);
  }

  clsPlugin& Plugin() { return plugin_; }
  ListCommands& Lists() { return lists_; }
  const TimerLoop& Timers() const { return timers_; }

 private:
  class Errors;

  /// What a tick does, as parts of its work that can fail. A message is its position, from 0.
  enum Part : std::int32_t { kSending = -4, kFile, kSettings, kGame };
  /// How far the broadcasts are.
  struct Place {
    std::int32_t nextMessage = 0;
    std::int32_t elapsedTicks = 0;
    std::int64_t posted = 0;  // the number of the last text
  };
  Place PlaceNow() const;
  /// The part that a failure of a tick belongs to.
  std::int32_t PartOf(const Failure& failure) const;
  /// Whether a tick that ran between the two places has done this part.
  static bool HasDone(std::int32_t part, const Place& before, const Place& after);

  /// Reports a problem, in words that begin with the profile's label.
  void Tell(const std::string& words);
  std::string Label() const;
  std::string MessageFile() const;

  HostProfiles& profiles_;
  Troubles& troubles_;
  const std::int32_t index_;
  const std::chrono::nanoseconds minute_;
  MachineFiles machineFiles_;
  IniFiles files_{machineFiles_};
  forms::WindowHandle parent_ = 0;  // of the window, once loaded
  TimerLoop timers_;
  headless::HeadlessToolkit toolkit_;
  PluginState state_;
  clsPlugin plugin_;
  ListCommands lists_{state_.services, state_.reporter, state_.store, state_.window};
  bool isInTick_ = false;
  std::int32_t failedPart_ = 0;                   // of the tick
  std::vector<std::string>* problems_ = nullptr;  // of the current call
};

/// Prints an error instead of showing a box. One that recurs on every tick is printed, logged and
/// sent as a report once.
class HeadlessPlugin::Instance::Errors final : public ErrorReporter {
 public:
  Errors(Instance& instance, const HostServices& services, const ProfileTables& tables)
      : ErrorReporter(services, tables), instance_(instance) {}

  void ReportError(const Failure& failure) override try {
    if (!instance_.files_.Settle()) return;  // the operation will run again
    const std::string words = Describe(failure);
    instance_.failedPart_ = instance_.PartOf(failure);
    const bool isReported = instance_.troubles_.IsReported({instance_.index_}, words);
    if (!IsServerAway(failure.error)) instance_.Tell(words);  // HostProfiles tells of that
    if (isReported) return;
    Failure recorded = failure;
    recorded.quiet = true;
    ErrorReporter::ReportError(recorded);
  } catch (...) {  // out of memory; the host must go on
  }

 protected:
  void TellOfNoReport(const RuntimeError& why) override {
    const bool isNoNumber = why.Is(ErrorNumber::TypeMismatch);
    instance_.Tell(
        instance_.Label() + ": no report was sent: " +
        (isNoNumber
             ? NativePath(HostFolder(instance_.profiles_.Folder()).Configuration()).string() +
                   ": ReportErrors is no number; write 0 or 1"
             : PlainWords(why)));
  }

 private:
  /// A value that is none of the plugin's kind stands in the message file, where a person wrote it.
  std::string Describe(const Failure& failure) const {
    if (failure.error.Is(ErrorNumber::TypeMismatch)) {
      const std::string problem = OptionProblem(instance_.MessageFile());
      if (!problem.empty()) return instance_.Label() + ": " + problem;
    }
    return DescribeError(instance_.Label(), failure.error, failure.procedure);
  }

  Instance& instance_;
};

HeadlessPlugin::Instance::Instance(HostProfiles& profiles, Troubles& troubles, std::int32_t index,
                                   std::chrono::nanoseconds minute)
    : profiles_(profiles),
      troubles_(troubles),
      index_(index),
      minute_(minute),
      timers_(minute),
      toolkit_(timers_),
      state_({profiles.Components(), *this, profiles.Components().Clock(), toolkit_},
             [this](const HostServices& services, const ProfileTables& tables) {
               return std::make_unique<Errors>(*this, services, tables);
             }),
      plugin_(state_) {}

std::unique_ptr<UtilityComponent> HeadlessPlugin::Instance::CreateUtility() {
  return std::make_unique<HostUtilityComponent>(profiles_.Folder(), profiles_.Components().Clock(),
                                                files_);
}

std::string HeadlessPlugin::Instance::MessageFile() const {
  return HostFolder(profiles_.Folder()).MessageFile(profiles_.At(index_).folder);
}

std::string HeadlessPlugin::Instance::Label() const {
  const auto profile = profiles_.All().find(index_);
  return profile != profiles_.All().end() ? profile->second.Label()
                                          : "profile " + std::to_string(index_);
}

void HeadlessPlugin::Instance::Tell(const std::string& words) {
  if (problems_ != nullptr) {
    if (std::ranges::find(*problems_, words) == problems_->end()) problems_->push_back(words);
  } else if (isInTick_) {
    troubles_.ReportStarted({index_}, words, Troubles::Clock::now(), failedPart_);
  } else {
    troubles_.Print(words);
  }
}

void HeadlessPlugin::Instance::Load(forms::WindowHandle parent, const HostValue& data) {
  parent_ = parent;
  troubles_.Forget({index_});
  const IniFiles::Listener unstored(files_, [this](const RuntimeError& error) {
    const std::string words = DescribeError(Label(), error, "LoadInterface");
    Tell(words);
    profiles_.Record("LoadInterface", words);
  });
  files_.Run([&] { plugin_.LoadInterface(index_, parent, data); });
}

HostedPlugin::Reply HeadlessPlugin::Instance::Answer(const std::function<std::string()>& operation,
                                                     const HostValue& data) {
  struct Listening {
    Listening(std::vector<std::string>*& place, Reply& reply) : place_(place) {
      place_ = &reply.problems;
    }
    ~Listening() { place_ = nullptr; }
    std::vector<std::string>*& place_;
  };
  Reply reply;
  const Listening listening(problems_, reply);
  const IniFiles::Listener unstored(
      files_, [this](const RuntimeError& error) { Tell(Label() + ": " + PlainWords(error)); });
  if (files_.Run([&] { reply.text = operation(); })) {
    reply.text.clear();
    const std::vector<std::string> problems = reply.problems;
    if (GetProgress().isStarted) plugin_.LoadInterface(index_, parent_, data);
    reply.problems = problems;
  }
  return reply;
}

HeadlessPlugin::Instance::Place HeadlessPlugin::Instance::PlaceNow() const {
  const auto& texts = profiles_.Components().GetChat().LatestOf(index_);
  Place place;
  place.posted = texts.empty() ? 0 : texts.back().number;
  if (!state_.window.IfLoaded()) return place;
  place.nextMessage = state_.tables.NextMessage(index_);
  place.elapsedTicks = state_.tables.ElapsedTicks(index_);
  return place;
}

std::int32_t HeadlessPlugin::Instance::PartOf(const Failure& failure) const {
  if (failure.procedure == "tmrRT") {  // its steps
    if (failure.line <= 3) return kGame;
    if (failure.line == 4) return kSettings;
    if (failure.line <= 6) return kFile;
    if (failure.line >= 12) return kSending;
  }
  return PlaceNow().nextMessage;
}

bool HeadlessPlugin::Instance::HasDone(std::int32_t part, const Place& before, const Place& after) {
  const bool hasPosted = after.posted != before.posted;
  const bool hasTried = hasPosted || after.nextMessage != before.nextMessage ||
                        after.elapsedTicks < before.elapsedTicks;
  if (part == kGame) return true;
  if (part == kSettings) return hasTried || after.elapsedTicks > before.elapsedTicks;
  if (part == kFile) return hasTried;
  if (part == kSending) return hasPosted;
  const bool hasComeRound = after.nextMessage <= before.nextMessage;
  const bool isBehind = part >= before.nextMessage;
  const bool isBefore = part < after.nextMessage;
  return hasTried && (hasComeRound ? isBehind || isBefore : isBehind && isBefore);
}

void HeadlessPlugin::Instance::RunDue() {
  const Place before = PlaceNow();
  isInTick_ = true;
  const int ran = timers_.RunDue();
  isInTick_ = false;
  if (ran == 0) return;
  if (profiles_.IsServerAway(index_)) return troubles_.EndUntried({index_});
  const Place after = PlaceNow();
  const auto hasDone = [&](std::int32_t part) { return HasDone(part, before, after); };
  if (const auto ended =
          troubles_.ReportEnded({index_}, Label(), Troubles::Clock::now(), hasDone)) {
    profiles_.Record("tmrRT", *ended);
  }
}

HostedPlugin::Progress HeadlessPlugin::Instance::GetProgress() const {
  const auto window = state_.window.IfLoaded();
  const auto next = timers_.NextDue();
  if (!window || !next) return {};
  Progress progress;
  progress.isStarted = true;
  progress.isSwitchedOn = window->Switch() == 1;
  progress.interval = window->Interval();
  progress.elapsedTicks = state_.tables.ElapsedTicks(index_);
  progress.nextMessage = state_.tables.NextMessage(index_);
  progress.problem = troubles_.WordsOn({index_});
  try {
    const std::int32_t ticks = TicksUntilDue(progress.interval, progress.elapsedTicks);
    if (ticks > 0) progress.due = *next + (ticks - 1) * minute_;
  } catch (const RuntimeError&) {  // no number: every tick fails
  }
  return progress;
}

HeadlessPlugin::HeadlessPlugin(HostProfiles& profiles, Troubles& troubles,
                               std::chrono::nanoseconds minute)
    : profiles_(profiles), troubles_(troubles), minute_(minute) {}

HeadlessPlugin::~HeadlessPlugin() = default;

HeadlessPlugin::Instance& HeadlessPlugin::At(std::int32_t index) {
  std::unique_ptr<Instance>& instance = instances_[index];
  if (!instance) instance = std::make_unique<Instance>(profiles_, troubles_, index, minute_);
  return *instance;
}

std::optional<TimerLoop::Clock::time_point> HeadlessPlugin::NextDue() const {
  std::optional<TimerLoop::Clock::time_point> first;
  for (const auto& [index, instance] : instances_) {
    const auto next = instance->Timers().NextDue();
    if (next && (!first || *next < *first)) first = next;
  }
  return first;
}

void HeadlessPlugin::RunDue() {
  for (const auto& [index, instance] : instances_) instance->RunDue();
}

PluginArea HeadlessSite::Area() const {
  constexpr std::int32_t kTwipsPerPixel = 15;  // of the headless toolkit
  return {1, layout::kClientWidth, layout::kClientHeight + layout::kHeadingHeight * kTwipsPerPixel};
}

void HeadlessPlugin::LoadInterface(std::int32_t index, forms::WindowHandle parent,
                                   const HostValue& data) {
  At(index).Load(parent, data);
}

void HeadlessPlugin::HideInterface() {
  for (const auto& [index, instance] : instances_) instance->Plugin().HideInterface();
}

void HeadlessPlugin::UnLoadInterface() {
  for (const auto& [index, instance] : instances_) instance->Plugin().UnLoadInterface("");
}

void HeadlessPlugin::DisableProfile(std::int32_t index) {
  At(index).Plugin().DisableProfile(index);
}

HostedPlugin::Reply HeadlessPlugin::Remote(const RemoteOperation& operation, std::int32_t index,
                                           const HostValue& data, const HostValue& value) {
  Instance& instance = At(index);
  return instance.Answer([&] { return (instance.Plugin().*operation.call)(index, data, value); },
                         data);
}

HostedPlugin::Reply HeadlessPlugin::ChangeList(const ListChange& change, std::int32_t index,
                                               const HostValue& data) {
  Instance& instance = At(index);
  return instance.Answer([&] { return change(instance.Lists(), ProfileData(data)); }, data);
}

std::optional<HostedPlugin::Progress> HeadlessPlugin::ProgressOf(std::int32_t index) const {
  const auto found = instances_.find(index);
  return found != instances_.end() ? found->second->GetProgress() : Progress();
}

}  // namespace rotacasts::host
