#!/usr/bin/env perl
# Each file of the product includes what it uses: the header that defines a type of ours, and the standard's for the
# names of the table below. A .cpp may lean on what its own header includes. What is only declared in a file needs no
# header there.
#
#   includes.pl SOURCE
use strict;
use warnings;
use utf8;
use open qw(:std :utf8);
use File::Find;

chdir $ARGV[0] or die "$ARGV[0]: $!\n";

# The headers that give each name; any one will do.
my %standard = map { my ($headers, $names) = /^(\S+) +(.*)/; map { $_ => $headers } split ' ', $names } split /\n/, <<'END';
algorithm any_of all_of none_of find_if find_if_not count_if min max clamp sort stable_sort min_element max_element transform replace reverse unique lower_bound
algorithm|ranges ranges
array array
atomic atomic
bitset bitset
charconv from_chars to_chars
chrono chrono
cmath|cstdlib abs
cmath ceil fabs floor isfinite isnan llround lround pow round
cstddef|string|string_view|vector|array size_t
cstddef ptrdiff_t
cstdint int8_t int16_t int32_t int64_t uint8_t uint16_t uint32_t uint64_t
cstdio fflush fprintf fputs perror snprintf
cstdlib exit getenv
cstring memcmp memcpy strerror strlen
deque deque
exception|stdexcept exception
exception current_exception exception_ptr rethrow_exception
filesystem filesystem
fstream ifstream ofstream
functional function hash reference_wrapper
iomanip put_time setfill setw
iostream cerr cin cout
iosfwd|ostream|iostream ostream
iterator back_inserter distance istreambuf_iterator next prev
iterator|array|deque|map|set|span|string|string_view|vector begin end rbegin rend size
limits numeric_limits
map map multimap
memory enable_shared_from_this make_shared make_unique shared_ptr static_pointer_cast unique_ptr weak_ptr
mutex lock_guard mutex unique_lock
numeric accumulate
optional nullopt optional
ostream|iostream endl flush
random mt19937 random_device uniform_int_distribution
set multiset set
span span
sstream istringstream ostringstream stringstream
stdexcept invalid_argument logic_error out_of_range runtime_error
string getline stod stoi stol to_string
string|string_view string string_view
system_error errc error_code generic_category system_error
thread this_thread thread
tuple tie tuple
unordered_map unordered_map
utility exchange forward move pair swap
variant get_if holds_alternative variant visit
vector vector
END
# A type's name that is a variable's, an enumerator's or a nested type's elsewhere.
my %homonyms = map { $_ => 1 } qw(Descripteur Genre Impression Rangées Refus Résultat Secondes Station ÉtatLiaison);

my (%text, %includes, %headers, %elsewhere);
find({no_chdir => 1, wanted => sub {
  return unless /\.(h|cpp)$/;
  utf8::decode(my $file = $_);
  open my $in, '<', $file or die "$file: $!\n";
  my $text = do { local $/; <$in> };
  $includes{$file}{$_} = 1 for $text =~ /^#include ["<]([^">\n]+)[">]/mg;
  $text =~ s{//[^\n]*}{}g;
  $text =~ s/"(\\.|[^"\\\n])*"/""/g;
  $text{$file} = $text;
  my $kind = '(?:enum class|class|struct|enum|using|concept)(?: \[\[[^\]]*\]\])?';
  my ($name) = $file =~ m{^(?:src/)?(.*\.h)$};
  while ($text =~ /^$kind (\w+)(?: final)?(?: :[^;{]*)?(?: \{| =)/mg) { $name ? push @{$headers{$1}}, $name : $elsewhere{$1}++ }
  while ($text =~ /^ +$kind (\w+)|template <[^;{]*?class (\w+)/mg) { $elsewhere{$1 // $2}++ }
}}, qw(src platform host terminal));
my %ours = map { $_ => $headers{$_}[0] } grep { @{$headers{$_}} == 1 && !$elsewhere{$_} && !$homonyms{$_} } keys %headers;

my ($wrong, $judged) = (0, 0);
for my $file (sort keys %text) {
  my $text = $text{$file};
  my $room = $file =~ m{^terminal/} ? 'terminal' : 'house';
  my ($self) = $file =~ m{^(?:src/)?(.*)\.(?:h|cpp)$};
  my %has = (%{$includes{$file} || {}}, "$self.h" => 1, %{$includes{$file =~ s/\.cpp$/.h/r} || {}});
  my %needs;
  $needs{$standard{$_}} //= "std::$_" for grep { $standard{$_} } $text =~ /\bstd::(\w+)/g;
  # A type where it is used as one: behind nothing or a qualifier, ahead of what it is applied to.
  my $behind = qr/(?:^|[^\w.>& *\]]|\b(?:const|return|throw|new|constexpr|mutable|static|inline|friend|explicit|public|typename|else|auto)) */;
  while ($text =~ /((?:\w+::)*)(?<![\w.~])(\w+)(?=::|\s*[&*>{(,]|\s+\w)/g) {
    my ($qualifier, $type) = ($1, $2);
    next unless my $header = $ours{$type};
    next if $qualifier =~ /^(?!Ombrey::$|Tarvel::$|$)/ || $room ne ($header =~ m{^terminal/} ? 'terminal' : 'house');
    next unless substr($text, 0, $-[0]) =~ /(?:$behind|[>;})] *|\n *)$/;
    next if $text =~ /^ *(?:class|struct|enum class) $type;/m;
    $needs{$header} //= $type;
  }
  for my $headers (sort keys %needs) {
    $judged++;
    next if grep { $has{$_} } split /\|/, $headers;
    print "$file uses $needs{$headers} without $headers\n";
    $wrong = 1;
  }
}
print "the search found nothing to judge\n" if $judged < 2000;
exit($wrong || $judged < 2000);
