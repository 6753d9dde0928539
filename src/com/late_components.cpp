#include "com/late_components.h"

#include "base/conversions.h"
#include "com/error_object.h"
#include "com/late_bound.h"

namespace rotacasts::win32 {
namespace {

/// The elements of an array of texts.
std::vector<std::string> TextsOf(const ComVariant& value) {
  const HostValue array = ToHostValue(value.Get());
  const HostValue::Array* elements = array.AsArray();
  if (elements == nullptr) throw RuntimeError(ErrorNumber::TypeMismatch);
  std::vector<std::string> texts;
  texts.reserve(elements->size());
  for (const HostValue& element : *elements) texts.push_back(ToText(element));
  return texts;
}

class LateUtility final : public UtilityComponent {
 public:
  std::string GetIniKey(const std::string& section, const std::string& key,
                        std::string& file) override {
    return TextOf(getIniKey_(TextArgument(section), TextArgument(key), TextReference(file)));
  }
  void WriteIniKey(const std::string& section, const Key& key,
                   const std::optional<std::string>& value, std::string& file) override {
    const TextArgument text = value ? TextArgument(*value) : TextArgument();
    if (const auto* number = std::get_if<std::int32_t>(&key)) {
      writeIniKey_(TextArgument(section), NumberArgument(*number), text, TextReference(file));
    } else {
      const auto* name = std::get_if<std::string>(&key);
      writeIniKey_(TextArgument(section), name != nullptr ? TextArgument(*name) : TextArgument(),
                   text, TextReference(file));
    }
  }
  std::vector<std::string> GetIniSection(const std::string& section, std::string& file) override {
    return TextsOf(getIniSection_(TextArgument(section), TextReference(file)));
  }
  HostValue ParseIniKey(std::string&& line, bool asPair) override {
    return ToHostValue(parseIniKey_(TextArgument(line), ValueArgument(asPair)).Get());
  }
  std::vector<std::string> ReadFile(std::string& file) override {
    return TextsOf(readFile_(TextReference(file)));
  }
  void AppendFile(const std::string& file, const std::string& text) override {
    appendFile_(TextArgument(file), TextArgument(text));
  }
  void LogError(const std::string& module, std::string& procedure, RuntimeError& error,
                std::int32_t& line) override {
    VARIANT object;
    ::VariantInit(&object);
    object.vt = VT_DISPATCH;
    object.pdispVal = MakeErrorObject(error).Detach();
    ComVariant owned(object);
    logError_(TextArgument(module), TextReference(procedure), VariantReference(owned),
              LongReference(line));
  }
  bool SendErrorReport(HostValue& report) override {
    const HostValue::Array* elements = report.AsArray();
    if (elements == nullptr) throw RuntimeError(ErrorNumber::TypeMismatch);
    ComVariant array = ToComVariantArray(*elements);
    return ToBoolean(ToHostValue(sendErrorReport_(VariantReference(array)).Get()));
  }

 private:
  LateBound object_ = LateBound::Create(kProgId);
  Member getIniKey_{object_, "GetIniKey"};
  Member writeIniKey_{object_, "WriteIniKey"};
  Member getIniSection_{object_, "GetIniSection"};
  Member parseIniKey_{object_, "ParseIniKey"};
  Member readFile_{object_, "ReadFile"};
  Member appendFile_{object_, "AppendFile"};
  Member logError_{object_, "LogError"};
  Member sendErrorReport_{object_, "SendErrorReport"};
};

class LateFileSystem final : public FileSystemObject {
 public:
  bool FileExists(const std::string& path) override {
    return ToBoolean(ToHostValue(fileExists_(TextArgument(path)).Get()));
  }
  bool FolderExists(const std::string& path) override {
    return ToBoolean(ToHostValue(folderExists_(TextArgument(path)).Get()));
  }
  void CreateFolder(const std::string& path) override { createFolder_(TextArgument(path)); }
  void CreateTextFile(const std::string& path) override {
    const ComVariant stream = createTextFile_(TextArgument(path), ValueArgument(false));
    if (stream.Get().vt != VT_DISPATCH || stream.Get().pdispVal == nullptr) return;
    stream.Get().pdispVal->AddRef();
    const LateBound text(ComPtr<IDispatch>::Take(stream.Get().pdispVal));
    Member(text, "Close")();
  }

 private:
  LateBound object_ = LateBound::Create(kProgId);
  Member fileExists_{object_, "FileExists"};
  Member folderExists_{object_, "FolderExists"};
  Member createFolder_{object_, "CreateFolder"};
  Member createTextFile_{object_, "CreateTextFile"};
};

}  // namespace

std::unique_ptr<UtilityComponent> CreateUtilityComponent() {
  return std::make_unique<LateUtility>();
}
std::unique_ptr<FileSystemObject> CreateFileSystemObject() {
  return std::make_unique<LateFileSystem>();
}

}  // namespace rotacasts::win32
