#!/usr/bin/env perl
# The walls of the house: what each room may include, that one file alone chooses the terminal, that nothing is included
# in a circle, that documents name files which are there, and that the plug-in's library shows its factory alone.
#
#   walls.pl SOURCE LIBRARY
use strict;
use warnings;
use File::Basename qw(basename dirname);
use File::Find;

my ($source, $library) = @ARGV;
chdir $source or die "$source: $!\n";
my $wrong = 0;
sub wrong { print "@_\n"; $wrong = 1 }

# Files, the folders whose headers they may include, the machine's headers that they may include; the first row that
# fits a file counts. Standard headers are small letters alone; systems and toolkits have a folder, ".h" or a capital.
my $standard = '[a-z_]+';
my $posix = '(?!sqlite3|libpq|Q[A-Z]|Qt).*';    # anything but the database's and the windows' own
my $below = 'src/(contracts|base)|platform/.*';
my @walls = (
  ['src/contracts/.*', 'src/contracts', $standard],
  ['src/base/.*', 'src/(contracts|base)', $standard],
  ['src/common/.*', 'src/(contracts|base|common)', $standard],
  ['src/link/.*', 'src/(contracts|base|common|link)', $standard],
  ['src/monitor/.*', 'src/(contracts|base|common|monitor)', $standard],
  ['src/import/.*', 'src/(contracts|base|common|link|monitor|import)', $standard],
  ['src/quotas/.*', 'src/(contracts|base|common|link|monitor|quotas)', $standard],
  ['src/transfer/.*', 'src/(contracts|base|common|link|monitor|transfer)', $standard],
  ['src/core/.*', 'src/.*', $standard],
  ['platform/qt/.*', $below, '(?!sqlite3|libpq).*'],
  ['platform/database/sqlite/.*', $below, '(?!libpq|Q[A-Z]|Qt).*'],
  ['platform/database/postgresql/.*', $below, '(?!sqlite3|Q[A-Z]|Qt).*'],
  ['platform/.*', $below, $posix],
  ['host/windows/.*', 'src/(contracts|base)|platform/.*|host(/windows)?', '(?!sqlite3|libpq).*'],
  ['host/.*', 'src/(contracts|base)|platform/.*|host', $posix],
  ['terminal/.*', 'terminal', $posix]);

sub text_of {
  open my $in, '<', $_[0] or die "$_[0]: $!\n";
  local $/;
  return <$in>;
}

my ($judged, %files, %rooms) = (0);
sub judge {
  my ($file) = @_;
  my ($wall) = grep { $file =~ /^$_->[0]$/ } @walls;
  return wrong("$file stands in no room") unless $wall;
  for (text_of($file) =~ /^[ \t]*#[ \t]*include[ \t]*([<"][^>"\n]+)[>"]/mg) {
    my ($kind, $name) = /^(.)(.*)/;
    my $folder = dirname($name);
    my $room = $folder =~ m{^(platform|host|terminal|tests)(/|$)} ? $folder : "src/$folder";
    my ($what, $allowed) = $kind eq '"' ? ($room, $wall->[1]) : ($name, $wall->[2]);
    wrong("$file includes $name") if $what !~ /^($allowed)$/ || $name =~ m{/rg80\.h$} && $file ne 'src/contracts/line_protocol.h';
    $judged++;
    next unless $kind eq '"';
    $files{$file}{"$room/" . basename($name)} = 1;
    $rooms{dirname($file)}{$room} = 1;
  }
}
find({no_chdir => 1, wanted => sub { judge($_) if /\.(h|cpp)$/ }}, qw(src platform host terminal));

# What leans on nothing that is left goes; what stays goes round in a circle, or leans on one.
sub circle {
  my (%left) = @_;
  while (my @free = grep { my $one = $_; !grep { $_ ne $one && $left{$_} } keys %{$left{$one}} } keys %left) {
    delete @left{@free};
  }
  wrong("include each other in a circle: @{[sort keys %left]}") if %left;
}
circle(%files);
circle(%rooms);

# A document that sends its reader to a file that has moved, to a name that is no more or to a button that is called
# otherwise is worse than none. A text of the programs may be cut in the source, and has "&" where its key stands.
my $texts = '';
find({no_chdir => 1, wanted => sub { $texts .= text_of($_) if /\.(h|cpp|desktop|map)$/ }}, qw(src platform host terminal packaging));
(my $shown_texts = $texts) =~ s/"\s*\n\s*"|&(?=\w|\xc3)//g;
my @documents = map { glob "$_/*.md" } '.', 'docs', 'src/contracts';
my $named = 0;
for my $document (@documents) {
  my $text = text_of($document);
  for ($text =~ m{[`(]((?:\.\./)?(?:src|platform|host|terminal|tests|bench|docs|packaging|images)/[\w./-]+)[`)]}g) {
    $named++;
    wrong("$document names $_") unless -e $_ || -e dirname($document) . "/$_";
  }
  for ($text =~ /`((?:\w|[\x80-\xff])+(?:::(?:\w|[\x80-\xff])+)*)`/g) {
    next unless /^([A-Z]|\xc3[\x80-\x9e])/ && /[a-z]/;
    my ($name) = /([^:]+)$/;
    $named++;
    wrong("$document names $_") if index($texts, $name) < 0;
  }
  my @cells = $document =~ /guide/ ? $text =~ /^\|(?!---) (.+?)(?: \(.*?)? \|.*\n(?!\|---)/mg : ();
  $text =~ s/\s*\n\s*/ /g;
  my @quoted = $text =~ /«(?: |\xc2\xa0)?(.+?)(?: |\xc2\xa0)?»/g;
  push @quoted, $text =~ /\*\*([A-Z]\S.*?)\*\*/g if $document =~ /guide/;
  for (map { split / *(?:…|>) */ } @quoted, @cells) {
    $named++;
    wrong("$document quotes $_") if index($shown_texts, $_) < 0;
  }
}

# The help, the manual and the documents know the same options.
for my $program (['tarvel', 'host'], ['rg80', 'terminal']) {
  my ($name, $room) = @$program;
  my %known = map { $_ => 1 } text_of("$room/options.cpp") =~ /^ *\{"(--[a-z0-9-]+)"/mg;
  my %told = map { $_ => 1 } map { /(--[a-z0-9-]+)/g } text_of("packaging/man/$name.1.scd") =~ /^(\*--.*)$/mg;
  wrong("$name.1 lacks $_") for grep { !$told{$_} } keys %known;
  wrong("$name.1 has $_") for grep { !$known{$_} } keys %told;
  for my $document (@documents, glob 'packaging/man/*') {
    wrong("$document: a lone backslash is left out of the page") if $document =~ /scd$/ && text_of($document) =~ /(?<!\\)\\[a-z]/;
    for (map { /(?<!\S)(--[a-z0-9-]+)/g } text_of($document) =~ /(?:^ *|`|runuser .*)$name( [^`\n]*--[^`\n]*)/mg) {
      $named++;
      wrong("$document: $name knows no $_") unless $known{$_};
    }
  }
}

# Whatever else the library showed could take the place of the host's own.
my ($version, $factory) = text_of('src/contracts/host.h') =~ /VersionContrat = (\d+).*NomFabrique = "(\w+)"/s;
my $shown = join ' ', map { (split)[1, 2] } `nm -D --defined-only '$library'`;
wrong("the library shows $shown") unless $shown eq "T $factory$version";

wrong("the search found nothing to judge") if $judged < 500 || $named < 300;
exit $wrong;
