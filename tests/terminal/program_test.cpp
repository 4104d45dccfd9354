// The program itself on a pseudo-terminal: one whole dialogue at line pace, its files, its ways to end.
#include "tests/support/program.h"

#include <gtest/gtest.h>
#include <sys/times.h>

#include <fstream>

#include "terminal/frame.h"
#include "tests/support/test_folder.h"

namespace Ombrey::Essais {

// Of the programs that have ended.
std::clock_t Work() {
  tms Spent{};
  times(&Spent);
  return Spent.tms_cutime + Spent.tms_cstime;
}

struct ProgramTest : testing::Test {
  // A command line of the shell, in the folder.
  [[nodiscard]] Programme Start(const std::string& Command) const { return Programme("cd " + In("") + "; " + Command); }
  [[nodiscard]] std::string In(const std::string& Name) const { return Folder.Chemin() / Name; }
  [[nodiscard]] std::string Text(const std::string& Name) const { return Contenu(In(Name)); }

  DossierEssai Folder;
};

TEST_F(ProgramTest, RunsOneDialogueAtLinePaceIdlesWithoutAPeerAndEndsByItself) {
  const std::string Load = "0012190908083009150001230004560071000000050112521234007";
  std::ofstream(In("loads")) << Load << '\n';
  std::filesystem::create_symlink("/dev/pts/no-such", In("line"));  // what a killed run leaves
  const std::clock_t Before = Work();
  auto Program =
      Start("exec " BIN_DIR
            "/rg80 --lien line --jusqu-a-vide --cadence 9600 --chargements loads --sortie kept --journal journal");
  ASSERT_TRUE(Program.Attendre("ligne : "));
  EXPECT_EQ(Start(": <>line; sleep 1").Fin(), 0);  // what the program works in that time is measured
  const auto Begin = std::chrono::steady_clock::now();
  auto Peer = Start(
      "exec 3<>line; printf '\\5A' >&3; head -c 61 <&3; printf '\\6\\0058' >&3; head -c 2 <&3;"
      " printf '\\002000000000123000456000789\\3;2' >&3; head -c 1 <&3; printf '\\4' >&3");
  EXPECT_TRUE(Peer.Attendre("<;"));
  const auto Taken = std::chrono::steady_clock::now() - Begin;
  EXPECT_GE(Taken, 63 * 1041us) << "2 bytes there and 61 back, 10 bits each";
  EXPECT_LT(Taken, 500ms);
  EXPECT_EQ(Peer.Fin(), 0);
  EXPECT_EQ(Rg80::Lisible(Peer.Dit()), "<ACK>A<STX>" + Load + "<ETX><;<ACK>8<ACK>");
  EXPECT_EQ(Program.Fin(), 0);
  EXPECT_LT(Work() - Before, sysconf(_SC_CLK_TCK) / 5);
  EXPECT_EQ(Text("kept/reponses.txt"), "000000000123000456000789\n");
  EXPECT_TRUE(Program.Dit().ends_with(
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
    auto Program = Start("exec " BIN_DIR "/rg80 " + Arguments);
    EXPECT_EQ(Program.Fin(), 2) << Arguments;
    EXPECT_TRUE(Program.Dit().starts_with("rg80 : ")) << Program.Dit();
  }
  EXPECT_EQ(Text("file"), "not a link");
}

}  // namespace Ombrey::Essais
