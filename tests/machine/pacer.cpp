// Lines between a virtual machine's serial chips, which keep no pace of their own, and terminals outside. Starts the
// machine, gives each of its lines the smallest buffer that the system knows, and takes one character from it each time
// that a real line would have carried one.
//   pacer NAME=[!]LINK... -- COMMAND...   "{NAME}" in the command becomes the number of the line's descriptor; "!"
//   stands for a line behind the machine's multiplexer, which alone can show a break
// On standard input: "NAME BAUDS" sets a line's pace; with 0 bauds the terminal sends a break. The machine's standard
// input is the pipe FD 3 of the caller.
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
constexpr int BitsOfACharacter = 10;
constexpr int MachineInput = 3;
/// Before a character that means something to the machine's multiplexer; doubled it is itself.
constexpr char Escape = 1;
constexpr char Break[] = {Escape, 'b', 0};

struct Line {
  std::string Link;
  bool Multiplexed = false;
  int Near = -1;  ///< towards the machine
  int Far = -1;   ///< towards the terminal; -1 while there is none
  std::chrono::nanoseconds Character{std::chrono::seconds(BitsOfACharacter) / 9600};
  Clock::time_point Next{};
  std::string Pending;  ///< on its way to the machine
};

void Check(bool Fine, const char* What) {
  if (Fine) return;
  std::perror(What);
  std::exit(1);
}

int NearEnd(int& ForMachine) {
  int Ends[2];
  Check(socketpair(AF_UNIX, SOCK_STREAM, 0, Ends) == 0, "socketpair");
  for (const int Smallest = 1; const int End : Ends)
    Check(setsockopt(End, SOL_SOCKET, SO_SNDBUF, &Smallest, sizeof Smallest) == 0, "SO_SNDBUF");
  fcntl(Ends[0], F_SETFD, FD_CLOEXEC);
  fcntl(Ends[0], F_SETFL, O_NONBLOCK);
  ForMachine = Ends[1];
  return Ends[0];
}

void OpenFar(Line& L) {
  if (L.Far >= 0 || (L.Far = open(L.Link.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) < 0) return;
  termios Mode{};
  tcgetattr(L.Far, &Mode);
  cfmakeraw(&Mode);
  tcsetattr(L.Far, TCSANOW, &Mode);
}

void FromTerminal(Line& L) {
  char Place[64];
  if (L.Far >= 0 && L.Pending.empty()) {
    const ssize_t Count = read(L.Far, Place, sizeof Place);
    for (ssize_t At = 0; At < Count; ++At) L.Pending.append(L.Multiplexed && Place[At] == Escape ? 2 : 1, Place[At]);
    if (Count == 0 || (Count < 0 && errno == EIO)) close(std::exchange(L.Far, -1));
  }
  if (L.Pending.empty()) return;
  if (const ssize_t Count = write(L.Near, L.Pending.data(), L.Pending.size()); Count > 0)
    L.Pending.erase(0, static_cast<std::size_t>(Count));
}

void ToTerminal(Line& L, Clock::time_point Now) {
  char Character = 0;
  if (Now < L.Next || read(L.Near, &Character, 1) != 1) return;
  L.Next = std::max(L.Next, Now - L.Character) + L.Character;
  if (L.Far >= 0 && write(L.Far, &Character, 1) < 0 && errno == EIO) close(std::exchange(L.Far, -1));
}

void SetPace(std::map<std::string, Line>& Lines) {
  char Place[256];
  const ssize_t Count = read(STDIN_FILENO, Place, sizeof Place);
  if (Count <= 0) std::exit(0);
  std::istringstream Words(std::string(Place, static_cast<std::size_t>(Count)));
  std::string Name;
  for (long Bauds = 0; Words >> Name >> Bauds;)
    if (const auto Found = Lines.find(Name); Found != Lines.end() && Bauds > 0) {
      Found->second.Character = std::chrono::nanoseconds(std::chrono::seconds(BitsOfACharacter)) / Bauds;
    } else if (Found != Lines.end() && Found->second.Multiplexed) {
      Found->second.Pending += Break;
    }
}

void Step(std::map<std::string, Line>& Lines) {
  std::vector<pollfd> Watched = {{STDIN_FILENO, POLLIN, 0}};
  auto Wait = std::chrono::nanoseconds(std::chrono::milliseconds(100));
  const auto Now = Clock::now();
  for (auto& [Name, L] : Lines) {
    OpenFar(L);
    const bool MayRead = Now >= L.Next;
    if (!MayRead) Wait = std::min(Wait, L.Next - Now);
    Watched.push_back({L.Near, static_cast<short>((MayRead ? POLLIN : 0) | (L.Pending.empty() ? 0 : POLLOUT)), 0});
    if (L.Far >= 0 && L.Pending.empty()) Watched.push_back({L.Far, POLLIN, 0});
  }
  const timespec Limit{0, static_cast<long>(Wait.count())};
  ppoll(Watched.data(), Watched.size(), &Limit, nullptr);
  if (Watched.front().revents != 0) SetPace(Lines);
  for (auto& [Name, L] : Lines) {
    FromTerminal(L);
    ToTerminal(L, Clock::now());
  }
}

}  // namespace

int main(int Count, char** Words) {
  std::map<std::string, Line> Lines;
  std::map<std::string, int> ForMachine;
  int At = 1;
  for (; At < Count && std::string(Words[At]) != "--"; ++At) {
    const std::string Word = Words[At];
    Line& L = Lines[Word.substr(0, Word.find('='))];
    L.Link = Word.substr(Word.find('=') + 1);
    L.Multiplexed = L.Link.starts_with('!');
    if (L.Multiplexed) L.Link.erase(0, 1);
    L.Near = NearEnd(ForMachine[Word.substr(0, Word.find('='))]);
  }
  std::vector<std::string> Command(Words + std::min(At + 1, Count), Words + Count);
  for (std::string& Word : Command)
    for (const auto& [Name, Number] : ForMachine)
      if (const auto Place = Word.find("{" + Name + "}"); Place != std::string::npos)
        Word.replace(Place, Name.size() + 2, std::to_string(Number));
  const pid_t Machine = fork();
  if (Machine == 0) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    dup2(MachineInput, STDIN_FILENO);
    std::vector<char*> Arguments;
    for (std::string& Word : Command) Arguments.push_back(Word.data());
    Arguments.push_back(nullptr);
    execvp(Arguments[0], Arguments.data());
    _exit(127);
  }
  for (const auto& [Name, Number] : ForMachine) close(Number);
  int State = 0;
  while (waitpid(Machine, &State, WNOHANG) == 0) Step(Lines);
  return WIFEXITED(State) ? WEXITSTATUS(State) : 1;
}
