// game-server-sim: a process that keeps a simulated game at a build's real addresses and receives
// chat.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "base/runtime_error.h"
#include "base/text.h"
#include "machine/program_arguments.h"
#include "simulator/chat_listener.h"
#include "simulator/game_image.h"
#include "simulator/mapped_memory.h"
#include "simulator/process.h"

namespace {

using namespace rotacasts;
using namespace rotacasts::simulator;
using Clock = std::chrono::steady_clock;

struct Options {
  std::string gameCode;
  LifeOptions life;
  std::uint16_t port = 0;
  int stepMilliseconds = 100;
  std::string label;
  std::string readyFile;
  bool withParent = false;
};

/// Writes "PROCESS PORT" to a file, in one step, for a program that waits for it.
void WriteReadyFile(const std::string& file, std::uint16_t port) {
  const std::filesystem::path target = host::PathOf(file);
  std::filesystem::path beside = target;
  beside += ".tmp";
  std::ofstream(beside) << ThisProcess() << " " << port << "\n";
  std::filesystem::rename(beside, target);
}

void PrintMessage(const Options& options, std::string_view text) {
  std::string line = options.label;
  line.resize(std::max<std::size_t>(line.size(), 14), ' ');
  line += " " + options.gameCode;
  line.resize(std::max<std::size_t>(line.size(), 25), ' ');
  std::cout << line + " " + ReplaceControls(text, '?') + "\n" << std::flush;
}

void Run(const Options& options) {
  WatchForEnd();
  if (options.withParent) EndWithParent();
  AllowReaders();
  GameLife life(options.life);
  MappedMemory memory;
  GameImage image(memory, options.gameCode, life.Now());
  image.Write(life.Now());
  ChatListener chat(options.port);
  if (!options.readyFile.empty()) {
    WriteReadyFile(options.readyFile, chat.Port());
  } else {
    std::cout << "game-server-sim " << options.gameCode << ": process " << ThisProcess()
              << ", chat on 127.0.0.1:" << chat.Port() << std::endl;
  }
  const std::chrono::milliseconds step(options.stepMilliseconds);
  for (Clock::time_point next = Clock::now() + step; !EndRequested();) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now());
    if (left.count() > 0) {
      if (const auto text = chat.Receive(left)) PrintMessage(options, *text);
    } else {
      life.Step();
      image.Write(life.Now());
      next += step;
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app("Simulates a game server: a living game in memory, chat on a loopback port.",
               "game-server-sim");
  app.add_option("--game-code", options.gameCode, "as in a profile, such as JO or JO_AFF")
      ->required();
  app.add_option("--players", options.life.players, "1 to 250")
      ->check(CLI::Range(1, 250).description(""))
      ->capture_default_str();
  app.add_option("--seed", options.life.seed, "the same seed lives the same life")
      ->capture_default_str();
  app.add_option("--map-steps", options.life.mapSteps, "how long a map is played")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  app.add_option("--pause-steps", options.life.pauseSteps, "how long no game runs between maps")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
  app.add_option("--step", options.stepMilliseconds, "milliseconds a step of life takes")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  app.add_option("--port", options.port, "UDP port for chat; 0 takes a free one")
      ->capture_default_str();
  app.add_option("--label", options.label, "printed in front of every message");
  app.add_option("--ready-file", options.readyFile, "written when all is up: PROCESS PORT");
  app.add_flag("--with-parent", options.withParent, "end when the starting program ends");
  try {
    app.parse(host::ProgramArguments(argc, argv));
    Run(options);
    return 0;
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  } catch (...) {
    std::cerr << "game-server-sim: " << CurrentRuntimeError().description << "\n";
    return 2;
  }
}
