#include "support/fake_host.h"

#include <cstdio>
#include <sstream>

#include "base/text.h"

namespace rotacasts {
inline namespace testing {
namespace {

using host::IniText;

template <class Argument>
const Argument& Text(const Argument& argument) {
  return argument;
}
std::string Text(const UtilityComponent::Key& key) {
  if (const auto* number = std::get_if<std::int32_t>(&key)) return "#" + std::to_string(*number);
  if (const auto* text = std::get_if<std::string>(&key)) return *text;
  return "null";
}

std::string Hex(std::int32_t address) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(address));
  return text;
}

/// A component call, from its arrival to its return.
class Call {
 public:
  template <class... Arguments>
  Call(FakeHost& host, const char* name, const Arguments&... arguments) : host_(host) {
    std::ostringstream call;
    [[maybe_unused]] const char* separator = "(";
    ((call << std::boolalpha << separator << Text(arguments), separator = ", "), ...);
    host_.calls.push_back(name + call.str() + (sizeof...(arguments) > 0 ? ")" : ""));
    if (host_.insideCall) host_.insideCall();
    if (host_.failAtCall == 0 || --host_.failAtCall > 0) return;
    host_.fired = true;
    throw RuntimeError(ErrorNumber::DeviceIoError, "injected into " + std::string(name));
  }
  ~Call() {
    if (host_.afterCall) host_.afterCall();
  }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

 private:
  FakeHost& host_;
};

class FakeMemory final : public MemoryComponent {
 public:
  explicit FakeMemory(FakeHost& host) : host_(host) {}
  std::int32_t ReadLong(std::int32_t& handle, std::int32_t address) override {
    const Call call(host_, "ReadLong", handle, Hex(address));
    if (host_.writesBack) handle = 999;
    const auto found = host_.longs.find(address);
    if (found == host_.longs.end()) throw RuntimeError(57, "not mapped " + Hex(address));
    return found->second;
  }
  std::string ReadStr(std::int32_t& handle, std::int32_t address) override {
    const Call call(host_, "ReadStr", handle, Hex(address));
    return host_.texts[address];
  }
  void AddMsg(std::int16_t& index, std::int32_t& target, std::string& text, bool& affiliate,
              const std::string& kind, std::int16_t mode) override {
    const Call call(host_, "AddMsg", index, target, text, affiliate, kind, mode);
    Send(target, text);
  }
  void AddMsgB(std::int16_t& index, std::int32_t& target, std::string& text, bool& affiliate,
               const std::string& kind, std::int16_t mode, std::string& gameCode) override {
    const Call call(host_, "AddMsgB", index, target, text, affiliate, kind, mode, gameCode);
    Send(target, text);
    if (host_.writesBack) gameCode = "JO_2";
  }
  std::string Enc64(const std::string& text) override {
    const Call call(host_, "Enc64", text);
    return "<" + text + ">";
  }
  std::string Dec64(const std::string& text) override {
    const Call call(host_, "Dec64", text);
    if (text.size() < 2 || text.front() != '<') throw RuntimeError(5, "not encoded");
    return text.substr(1, text.size() - 2);
  }

 private:
  void Send(std::int32_t& target, const std::string& text) {
    host_.sent.push_back(text);
    if (host_.writesBack) target = 888;
  }
  FakeHost& host_;
};

class FakeUtility final : public UtilityComponent {
 public:
  explicit FakeUtility(FakeHost& host) : host_(host) {}
  std::string GetIniKey(const std::string& section, const std::string& key,
                        std::string& file) override {
    const Call call(host_, "GetIniKey", section, key, file);
    return FromWindows1252(Ini(file).Value(section, key).value_or(""));
  }
  void WriteIniKey(const std::string& section, const Key& key,
                   const std::optional<std::string>& value, std::string& file) override {
    const Call call(host_, "WriteIniKey", section, key, value.value_or("null"), file);
    if (file.empty()) throw RuntimeError(ErrorNumber::PathNotFound);
    IniText ini = Ini(file);
    std::string keyText = Text(key);
    if (std::holds_alternative<std::int32_t>(key)) keyText.erase(0, 1);
    if (std::holds_alternative<std::monostate>(key)) {
      ini.RemoveSection(section);
    } else if (value) {
      ini.SetValue(section, keyText, ToWindows1252(*value));
    } else {
      ini.RemoveKey(section, keyText);
    }
    host_.files[file] = ini.Bytes();
  }
  Texts GetIniSection(const std::string& section, std::string& file) override {
    const Call call(host_, "GetIniSection", section, file);
    Texts lines;
    const IniText ini = Ini(file);
    for (const auto& line : ini.Lines(section)) {
      lines.push_back(std::string(line.key) + "=" + FromWindows1252(line.value));
    }
    lines.emplace_back();
    return lines;
  }
  HostValue ParseIniKey(std::string&& line, bool asPair) override {
    const Call call(host_, "ParseIniKey", line, asPair);
    const auto equals = line.find('=');
    if (equals == line.npos || line.find("unsplittable") != line.npos) {
      throw RuntimeError(ErrorNumber::TypeMismatch);
    }
    if (!asPair) return line.substr(equals + 1);
    return HostValue::Array{line.substr(0, equals), line.substr(equals + 1)};
  }
  Texts ReadFile(std::string& file) override {
    const Call call(host_, "ReadFile", file);
    if (!host_.files.contains(file)) throw RuntimeError(ErrorNumber::FileNotFound, file);
    std::istringstream bytes(ReplaceAll(host_.files[file], "\r\n", "\n"));
    Texts lines;
    for (std::string line; std::getline(bytes, line);) lines.push_back(line);
    return lines;
  }
  void AppendFile(const std::string& file, const std::string& text) override {
    const Call call(host_, "AppendFile", file, text);
    host_.files[file] += text + "\r\n";
  }
  void LogError(const std::string& module, std::string& procedure, RuntimeError& error,
                std::int32_t& line) override {
    const Call call(host_, "LogError", module, procedure, error.number, line);
    host_.logged.push_back(procedure + ": " + std::to_string(error.number) + " " +
                           error.description);
  }
  bool SendErrorReport(HostValue& report) override {
    const Call call(host_, "SendErrorReport");
    host_.reports.push_back(report);
    return host_.delivers;
  }

 private:
  IniText Ini(const std::string& file) const {
    const auto found = host_.files.find(file);
    return IniText(found != host_.files.end() ? found->second : "");
  }
  FakeHost& host_;
};

class FakeFileSystem final : public FileSystemObject {
 public:
  explicit FakeFileSystem(FakeHost& host) : host_(host) {}
  bool FileExists(const std::string& path) override {
    return Answer([&] { return host_.files.contains(path); });
  }
  bool FolderExists(const std::string& path) override {
    return Answer([&] { return host_.folders.contains(path); });
  }
  void CreateFolder(const std::string& path) override {
    const Call call(host_, "CreateFolder", path);
    if (!host_.folders.contains(path.substr(0, path.rfind('\\')))) {
      throw RuntimeError(ErrorNumber::PathNotFound, path);
    }
    if (!host_.folders.insert(path).second) {
      throw RuntimeError(ErrorNumber::FileAlreadyExists, path);
    }
  }
  void CreateTextFile(const std::string& path) override {
    const Call call(host_, "CreateTextFile", path);
    if (!host_.files.try_emplace(path).second) {
      throw RuntimeError(ErrorNumber::FileAlreadyExists, path);
    }
  }

 private:
  bool Answer(const std::function<bool()>& ask) const {  // which stands not among the calls
    if (host_.insideFileCall) host_.insideFileCall();
    const bool answer = ask();
    if (host_.insideFileCall) host_.insideFileCall();
    return answer;
  }
  FakeHost& host_;
};

}  // namespace

std::string& FakeHost::MessageFile(int index) {
  return files[PathOf(index)];
}

std::unique_ptr<MemoryComponent> MakeFakeMemory(FakeHost& host) {
  return std::make_unique<FakeMemory>(host);
}
std::unique_ptr<UtilityComponent> MakeFakeUtility(FakeHost& host) {
  return std::make_unique<FakeUtility>(host);
}

struct PluginHarness::Fakes final : public ComponentFactory, public Module, public LocalClock {
  explicit Fakes(FakeHost& fakeHost) : host(fakeHost) {}
  std::unique_ptr<UtilityComponent> CreateUtility() override {
    if (!host.hasUtility) throw RuntimeError(ErrorNumber::CannotCreateComponent);
    return MakeFakeUtility(host);
  }
  std::unique_ptr<MemoryComponent> CreateMemory() override {
    host.calls.emplace_back("create memory component");
    if (!host.hasMemory) throw RuntimeError(ErrorNumber::CannotCreateComponent);
    return MakeFakeMemory(host);
  }
  std::unique_ptr<FileSystemObject> CreateFileSystem() override {
    return std::make_unique<FakeFileSystem>(host);
  }
  std::string Folder() const override { return host.moduleFolder; }
  ModuleVersion Version() const override { return {1, 2, 9}; }
  LocalTime Now() const override { return host.now; }
  FakeHost& host;
};

PluginHarness::PluginHarness() : fakes_(std::make_shared<Fakes>(host)) {
  toolkit.onMessageBox = [this](const std::string& text, const std::string& title) {
    host.boxes.push_back(title + "|" + text);
  };
}

PluginState& PluginHarness::State() {
  if (!state_) {
    state_ = std::make_unique<PluginState>(Platform{*fakes_, *fakes_, *fakes_, toolkit});
    plugin_ = std::make_unique<clsPlugin>(*state_);
  }
  return *state_;
}

clsPlugin& PluginHarness::Plugin() {
  State();
  return *plugin_;
}

HostValue Data(std::int32_t index, const std::string& gameCode,
               const std::map<std::size_t, HostValue>& instead) {
  HostValue::Array data(pdat::kSize);
  data[pdat::kGameCode] = gameCode;
  data[pdat::kProcessHandle] = 100 + index % 1000;
  data[pdat::kMessageTarget] = 4000 + index % 1000;
  data[pdat::kProfileFolder] = "srv" + std::to_string(index);
  data[pdat::kAdministrator] = "admin";
  data[pdat::kSharedLog] = true;
  data[pdat::kAreaHeight] = 6000;
  data[pdat::kAreaWidth] = 9000;
  for (const auto& [element, value] : instead) data[element] = value;
  return data;
}

Texts PluginHarness::Rows() {
  Texts rows;
  for (const auto& item : Window().lstMessages().Items()) rows.push_back(item.text);
  return rows;
}

Texts PluginHarness::TakeErrors() {
  Texts errors = std::exchange(host.logged, {});
  for (std::string& error : errors) error.erase(error.find(' ', error.find(": ") + 2));
  return errors;
}

void PluginHarness::Press(const char* control, std::int16_t button, float x, float y) {
  Window().Find(control)->UserPressed({button, x, y});
}

void PluginHarness::Click(const char* control, std::int16_t button, float x, float y) {
  Press(control, button, x, y);
  Window().Find(control)->UserReleased({button, x, y});
}

void PluginHarness::TypeOver(forms::TextBox& box, const std::string& text) {
  box.UserChangedText(std::string(FirstCharacters(text, box.MaxLength())));
}

void PluginHarness::AddInWindow(const std::string& text) {
  TypeOver(Window().txtMessage(), text);
  Click("cmdAdd", forms::MouseEvent::kLeft);
}

Texts PluginHarness::Stored(int index) {
  Texts texts;
  const IniText ini(host.MessageFile(index));
  for (const auto& line : ini.Lines("Messages")) texts.push_back(FromWindows1252(line.value));
  return texts;
}

std::string LinesOf(const IniText& ini, std::string_view section) {
  std::string text;
  for (const auto& line : ini.Lines(section)) {
    text.append(line.key).append("=").append(line.value).append(";");
  }
  return text;
}

std::string MessageFileBytes(const Texts& messages, const std::string& enable,
                             const std::string& interval) {
  std::string bytes = "[Messages]\r\n";
  for (std::size_t i = 0; i < messages.size(); ++i) {
    bytes += std::to_string(i + 1) + "=" + ToWindows1252(messages[i]) + "\r\n";
  }
  return bytes + "[Options]\r\nEnable=" + enable + "\r\nInterval=" + interval + "\r\n";
}

}  // namespace testing
}  // namespace rotacasts
