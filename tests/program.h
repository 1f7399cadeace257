// Runs the built program as a process of its own and catches what it says.
#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace varimesh {

inline std::string readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// A new directory that goes with everything in it.
class TempDir {
 public:
  TempDir() {
    std::string name = std::filesystem::temp_directory_path() / "varimesh-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) std::abort();
    path_ = name;
  }
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  [[nodiscard]] std::string read(const std::string& name) const { return readFile(path_ / name); }
  [[nodiscard]] bool has(const std::string& name) const { return exists(path_ / name); }
  void write(const std::string& name, std::string_view text) const {
    std::filesystem::create_directories((path_ / name).parent_path());
    std::ofstream(path_ / name, std::ios::binary) << text;
  }

 private:
  std::filesystem::path path_;
};

struct ProgramResult {
  int status = -1;  // the exit status; of a process that a signal ended, 128 and the signal
  std::string out;
  std::string err;
};

// Runs a program, found by its path, with these arguments in that directory.
inline ProgramResult runCommand(const std::string& command,
                                const std::vector<std::string>& arguments,
                                const std::filesystem::path& directory,
                                std::string_view input = {}) {
  const TempDir streams;
  streams.write("in", input);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  const auto open = [&](int stream, const char* name, int flags) {
    const std::string path = streams.path() / name;
    posix_spawn_file_actions_addopen(&actions, stream, path.c_str(), flags, 0600);
  };
  open(STDIN_FILENO, "in", O_RDONLY);
  open(STDOUT_FILENO, "out", O_WRONLY | O_CREAT);
  open(STDERR_FILENO, "err", O_WRONLY | O_CREAT);
  posix_spawn_file_actions_addchdir_np(&actions, directory.c_str());

  std::vector<std::string> words{command};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  ProgramResult result;
  pid_t process = 0;
  if (posix_spawn(&process, command.c_str(), &actions, nullptr, argv.data(), environ) == 0) {
    int status = 0;
    waitpid(process, &status, 0);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = streams.read("out");
    result.err = streams.read("err");
  }
  posix_spawn_file_actions_destroy(&actions);
  return result;
}

// Runs the program that the tests belong to.
inline ProgramResult runProgram(const std::vector<std::string>& arguments,
                                const std::filesystem::path& directory,
                                std::string_view input = {}) {
  return runCommand(VARIMESH_PROGRAM, arguments, directory, input);
}

}  // namespace varimesh
