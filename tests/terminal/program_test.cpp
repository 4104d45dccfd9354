// The program itself on a pseudo-terminal: one whole dialogue at line pace, its files, its ways to end.
#include "tests/road/program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/times.h>

#include <fstream>
#include <optional>

#include "platform/loop/descriptor.h"
#include "terminal/frame.h"
#include "tests/support/test_folder.h"

namespace {

using namespace std::chrono_literals;

// Of the programs that have ended.
std::clock_t Work() {
  tms Spent{};
  times(&Spent);
  return Spent.tms_cutime + Spent.tms_cstime;
}

struct ProgramTest : testing::Test {
  void Start(const std::string& Arguments) { Program.emplace("cd " + In("") + "; exec " BIN_DIR "/rg80 " + Arguments); }
  void Connect() {
    ASSERT_TRUE(Program->Attendre("ligne : "));
    Reconnect();
  }
  void Reconnect() { Peer = Ombrey::Descripteur(open(In("line").c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)); }
  // Sends the bytes, gives as many as come back up to Length.
  [[nodiscard]] std::string Ask(const std::string& Bytes, std::size_t Length) const {
    EXPECT_EQ(write(Peer.Numéro(), Bytes.data(), Bytes.size()), static_cast<ssize_t>(Bytes.size()));
    std::string Came;
    pollfd Readable{Peer.Numéro(), POLLIN, 0};
    char Next = 0;
    while (Came.size() < Length && poll(&Readable, 1, 5000) > 0 && read(Readable.fd, &Next, 1) == 1) Came += Next;
    return Rg80::Lisible(Came);
  }
  [[nodiscard]] std::string In(const std::string& Name) const { return (Folder.Chemin() / Name).string(); }
  [[nodiscard]] std::string Text(const std::string& Name) const {
    std::ifstream Stream(In(Name), std::ios::binary);
    return {std::istreambuf_iterator<char>(Stream), {}};
  }

  Ombrey::Essais::DossierEssai Folder;
  std::optional<Ombrey::Essais::Programme> Program;
  Ombrey::Descripteur Peer;
};

TEST_F(ProgramTest, RunsOneDialogueAtLinePaceIdlesWithoutAPeerAndEndsByItself) {
  const std::string Load = "0012190908083009150001230004560071000000050112521234007";
  std::ofstream(In("loads")) << Load << '\n';
  std::filesystem::create_symlink("/dev/pts/no-such", In("line"));  // what a killed run leaves
  const std::clock_t Before = Work();
  Start("--lien line --jusqu-a-vide --cadence 9600 --chargements loads --sortie kept --journal journal");
  Connect();
  Peer.Fermer();
  std::this_thread::sleep_for(1s);  // what it works in that time is measured
  Reconnect();
  const auto Begin = std::chrono::steady_clock::now();
  EXPECT_EQ(Ask("\5A", 61), "<ACK>A<STX>" + Load + "<ETX><;");
  const auto Taken = std::chrono::steady_clock::now() - Begin;
  EXPECT_TRUE(Taken >= 63 * 1041us && Taken < 300ms) << "2 bytes there and 61 back, 10 bits each";
  EXPECT_EQ(Ask("\6\58", 2), "<ACK>8");
  EXPECT_EQ(Ask("\002000000000123000456000789\3;2", 1), "<ACK>");
  EXPECT_EQ(Ask("\4", 0), "");
  EXPECT_EQ(Program->Fin(), 0);
  EXPECT_LT(Work() - Before, sysconf(_SC_CLK_TCK) / 5);
  EXPECT_EQ(Text("kept/reponses.txt"), "000000000123000456000789\n");
  EXPECT_TRUE(Program->Dit().ends_with(
      "bilan : envoyés 1, acquittés 1, refusés 0, sans réponse 0, réponses reçues 1, fichiers reçus 0\n"));
  EXPECT_NE(Text("journal").find("émis <ACK>A<STX>" + Load + "<ETX><;\n"), std::string::npos);
  EXPECT_FALSE(std::filesystem::is_symlink(In("line")));
}

TEST_F(ProgramTest, RefusesWhatItCannotServeWithCode2) {
  std::ofstream(In("file")) << "not a link";
  std::ofstream(In("short")) << "0012\n";
  for (const std::string Arguments :
       {"--lien file", "--lien no/such/folder", "--port /dev/null", "--port absent", "--port /dev/null --cadence 9601",
        "--lien line --chargements short", "--lien line --chargements absent", "--lien line --journal no/journal",
        "--lien line --sortie file"}) {
    Start(Arguments);
    EXPECT_EQ(Program->Fin(), 2) << Arguments;
    EXPECT_TRUE(Program->Dit().starts_with("rg80 : ")) << Program->Dit();
  }
  EXPECT_EQ(Text("file"), "not a link");
}

}  // namespace
