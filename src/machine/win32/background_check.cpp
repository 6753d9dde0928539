#include "machine/win32/background_check.h"

#include <utility>

#include "base/runtime_error.h"

namespace rotacasts::host {

/// What the thread has.
struct BackgroundCheck::Asked {
  static DWORD WINAPI Run(void* parameter) {
    const std::unique_ptr<Asked> asked(static_cast<Asked*>(parameter));
    Answer answer;
    try {
      answer = asked->question();
    } catch (...) {  // no memory left: no answer
    }
    asked->queue->Post([answer, onAnswer = asked->onAnswer] {
      const std::shared_ptr<std::function<void(Answer)>> whom = onAnswer.lock();
      if (!whom) return;
      const std::function<void(Answer)> call = std::move(*whom);
      call(answer);
    });
    return 0;
  }

  const std::shared_ptr<WorkQueue> queue;
  const std::function<bool()> question;
  const std::weak_ptr<std::function<void(Answer)>> onAnswer;
};

BackgroundCheck::BackgroundCheck(EventLoop& loop, std::function<bool()> question,
                                 std::function<void(Answer)> onAnswer)
    : onAnswer_(std::make_shared<std::function<void(Answer)>>(std::move(onAnswer))) {
  auto asked = std::make_unique<Asked>(Asked{loop.Queue(), std::move(question), onAnswer_});
  const win32::UniqueHandle thread(
      ::CreateThread(nullptr, 0, Asked::Run, asked.get(), CREATE_SUSPENDED, nullptr));
  if (!thread) throw RuntimeError(ErrorNumber::DeviceIoError, "no thread can be started");
  static_cast<void>(asked.release());
  ::SetThreadPriority(thread.Get(), THREAD_PRIORITY_BELOW_NORMAL);
  ::ResumeThread(thread.Get());
}

BackgroundCheck::~BackgroundCheck() = default;

}  // namespace rotacasts::host
