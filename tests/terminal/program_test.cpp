// The program itself on a pseudo-terminal: one whole dialogue at line pace, its files, its ways to end.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "terminal/frame.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class ProgramTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string Pattern = (fs::temp_directory_path() / "rg80-test-XXXXXX").string();
    ASSERT_NE(mkdtemp(Pattern.data()), nullptr);
    Folder_ = Pattern;
  }
  void TearDown() override {
    if (Peer_ >= 0) close(Peer_);
    if (Child_ > 0) kill(Child_, SIGKILL);
    fs::remove_all(Folder_);
  }

  void Start(std::vector<std::string> Arguments) {
    Arguments.insert(Arguments.begin(), std::string(BIN_DIR) + "/rg80");
    std::vector<char*> Raw;
    Raw.reserve(Arguments.size() + 1);
    for (std::string& One : Arguments) Raw.push_back(One.data());
    Raw.push_back(nullptr);
    const std::string Out = In("out");
    Child_ = fork();
    if (Child_ != 0) return;
    const int File = open(Out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(File, STDOUT_FILENO);
    dup2(File, STDERR_FILENO);
    execv(Raw[0], Raw.data());
    _exit(127);
  }
  void Connect() {
    for (int Try = 0; Peer_ < 0 && Try < 500; ++Try) {
      Peer_ = open(In("line").c_str(), O_RDWR | O_NOCTTY);
      if (Peer_ < 0) std::this_thread::sleep_for(10ms);
    }
    ASSERT_GE(Peer_, 0) << Text("out");
  }
  void Send(const std::string& Bytes) {
    ASSERT_EQ(write(Peer_, Bytes.data(), Bytes.size()), static_cast<ssize_t>(Bytes.size()));
  }
  std::string Receive(std::size_t Length) {
    std::string Came;
    pollfd Ready{Peer_, POLLIN, 0};
    while (Came.size() < Length && poll(&Ready, 1, 5000) > 0) {
      std::string Piece(Length - Came.size(), '\0');
      const ssize_t Count = read(Peer_, Piece.data(), Piece.size());
      if (Count <= 0) break;
      Came += Piece.substr(0, static_cast<std::size_t>(Count));
    }
    return Came;
  }
  int Wait() {
    int Status = 0;
    wait4(Child_, &Status, 0, &Used_);
    Child_ = 0;
    return WIFEXITED(Status) ? WEXITSTATUS(Status) : -1;
  }
  [[nodiscard]] std::string In(const std::string& Name) const { return (Folder_ / Name).string(); }
  [[nodiscard]] std::string Text(const std::string& Name) const {
    std::ifstream Stream(Folder_ / Name, std::ios::binary);
    return {std::istreambuf_iterator<char>(Stream), {}};
  }

  fs::path Folder_;
  pid_t Child_ = 0;
  rusage Used_{};
  int Peer_ = -1;
};

const std::string Load = "0012190908083009150001230004560071000000050112521234007";

TEST_F(ProgramTest, RunsOneDialogueAtLinePaceAndEndsByItself) {
  std::ofstream(In("loads")) << Load << '\n';
  fs::create_symlink("/dev/pts/no-such", In("line"));  // what a killed run leaves
  Start({"--lien", In("line"), "--chargements", In("loads"), "--cadence", "9600", "--sortie", In("kept"), "--journal",
         In("journal"), "--jusqu-a-vide"});
  for (int Try = 0; Try < 500 && !fs::exists(In("line")); ++Try) std::this_thread::sleep_for(10ms);
  Connect();
  const auto Begin = Clock::now();
  Send(
      "\x05"
      "A");
  EXPECT_EQ(Receive(61),
            "\x06"
            "A\x02" +
                Load + "\x03<;");
  const auto Taken = Clock::now() - Begin;
  EXPECT_GE(Taken, 63 * 1041us) << "2 bytes there and 61 back, 10 bits each";
  EXPECT_LT(Taken, 200ms);
  Send(
      "\x06\x05"
      "8");
  EXPECT_EQ(Receive(2),
            "\x06"
            "8");
  const std::string Reply = "000000000123000456000789";
  Send("\x02" + Reply + "\x03;2");
  EXPECT_EQ(Receive(1), "\x06");
  Send("\x04");
  EXPECT_EQ(Wait(), 0);
  EXPECT_EQ(Text("kept/reponses.txt"), Reply + "\n");
  EXPECT_TRUE(Text("out").ends_with(
      "bilan : envoyés 1, acquittés 1, refusés 0, sans réponse 0, réponses reçues 1, fichiers reçus 0\n"));
  EXPECT_NE(Text("journal").find("émis <ACK>A<STX>" + Load + "<ETX><;\n"), std::string::npos);
  EXPECT_FALSE(fs::exists(fs::symlink_status(In("line"))));
}

TEST_F(ProgramTest, KeepsAFileAsItCameAndSurvivesItsPeersComingsAndGoings) {
  Start({"--lien", In("line"), "--f6", "--sortie", In("kept")});
  Connect();
  close(std::exchange(Peer_, -1));
  Connect();
  std::string File;
  for (int Rank = 0; Rank < 3000; ++Rank) File += "000123Coopérative" + std::string(23, ' ');
  Send(
      "\x05"
      "1");
  EXPECT_EQ(Receive(2),
            "\x06"
            "1");
  Send(Rg80::Encadrer(File));
  EXPECT_EQ(Receive(1), "\x06");
  kill(Child_, SIGTERM);
  EXPECT_EQ(Wait(), 0);
  EXPECT_TRUE(Text("kept/fichier-1.txt") == File);
  EXPECT_TRUE(Text("out").ends_with("fichiers reçus 1\n")) << Text("out");
}

TEST_F(ProgramTest, CostsNothingWhileIdle) {
  Start({"--lien", In("line"), "--cadence", "9600"});
  Connect();
  Send(
      "\x05"
      "A");
  EXPECT_EQ(Receive(2),
            "\x15"
            "A");
  std::this_thread::sleep_for(1s);
  kill(Child_, SIGINT);
  EXPECT_EQ(Wait(), 0);
  const auto Span = [](const timeval& Time) { return Time.tv_sec * 1s + Time.tv_usec * 1us; };
  EXPECT_LT(Span(Used_.ru_utime) + Span(Used_.ru_stime), 200ms);
}

TEST_F(ProgramTest, RefusesWhatItCannotServeWithCode2) {
  std::ofstream(In("file")) << "not a link";
  std::ofstream(In("short")) << "0012\n";
  for (const std::vector<std::string>& Arguments :
       std::vector<std::vector<std::string>>{{"--lien", In("file")},
                                             {"--lien", In("no/such/folder")},
                                             {"--port", "/dev/null"},
                                             {"--port", In("absent")},
                                             {"--port", "/dev/null", "--cadence", "9601"},
                                             {"--lien", In("line"), "--chargements", In("short")},
                                             {"--lien", In("line"), "--chargements", In("absent")},
                                             {"--lien", In("line"), "--journal", In("no/journal")},
                                             {"--lien", In("line"), "--sortie", In("file")}}) {
    Start(Arguments);
    EXPECT_EQ(Wait(), 2) << Arguments.back();
    EXPECT_TRUE(Text("out").starts_with("rg80 : ")) << Text("out");
  }
  EXPECT_EQ(Text("file"), "not a link");
}

}  // namespace
