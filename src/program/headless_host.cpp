#include "program/headless_host.h"

namespace rotacasts::host {

HeadlessHost::HeadlessHost(TurnLoop& loop, ProgramRunner& programs, HostProfiles& profiles,
                           const HostOptions& options, std::ostream& out)
    : loop_(loop),
      profiles_(profiles),
      troubles_(out),
      plugin_(profiles, troubles_, options.minute),
      host_(profiles, plugin_, site_, options),
      console_(host_, out) {
  Chat& chat = profiles.Components().GetChat();
  chat.SetRunner(&programs);
  chat.onEnd = [this](const SentText& sent) { TellOfChat(sent); };
  loop.AddDeadline([this] { return plugin_.NextDue(); }, [this] { plugin_.RunDue(); });
  GameProcesses& servers = profiles.Components().Processes();
  loop.AtTurnBegin([&servers] { servers.BeginTurn(); });
  loop.AtTurnEnd([&servers] { servers.EndTurn(); });
  loop.onError = [this](const std::string& words) {
    troubles_.ReportStarted({0, Work::Kind::Host}, "the host: " + words + "; it goes on");
  };
  loop.onReload = [this] { console_.Reload(); };
}

HeadlessHost::~HeadlessHost() {
  Chat& chat = profiles_.Components().GetChat();
  chat.onEnd = nullptr;
  chat.SetRunner(nullptr);
}

bool HeadlessHost::Execute(const std::string& line) {
  const bool goesOn = console_.Execute(line) != Console::Outcome::Quit;
  if (!goesOn) loop_.Stop();
  return goesOn;
}

std::vector<std::int32_t> HeadlessHost::Indexes() const {
  std::vector<std::int32_t> indexes;
  for (const auto& [index, profile] : profiles_.All()) indexes.push_back(index);
  return indexes;
}

void HeadlessHost::TellOfChat(const SentText& sent) {
  const auto profile = profiles_.All().find(sent.profile);
  if (profile == profiles_.All().end() || profile->second.say.empty()) return;
  const Work work{sent.profile, Work::Kind::Chat};
  const std::string label = profile->second.Label();
  if (sent.outcome == SentText::Outcome::Failed) {
    const std::string words = label + ": " + sent.reason;
    const bool isNew = !troubles_.IsReported(work, words);
    troubles_.ReportStarted(work, words);
    if (isNew) profiles_.Record("Say", words);
  }
  if (const auto ended = troubles_.ReportEnded(work, label)) profiles_.Record("Say", *ended);
}

}  // namespace rotacasts::host
