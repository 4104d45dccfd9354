#!/usr/bin/env perl
# The walls of the house: what each room may include, that nothing is included in a circle, that documents name files
# which are there, and that the plug-in's library shows its factory alone.
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
  my ($file) = @_;
  open my $in, '<', $file or die "$file: $!\n";
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
    wrong("$file includes $name") unless $what =~ /^($allowed)$/;
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

# A document that sends its reader to a file that has moved is worse than none.
my $named = 0;
for my $document (map { glob "$_/*.md" } '.', 'docs', 'src/contracts') {
  for (text_of($document) =~ m{[`(]((?:\.\./)?(?:src|platform|host|terminal|tests|bench|docs|packaging|images)/[\w./-]+)[`)]}g) {
    $named++;
    wrong("$document names $_") unless -e $_ || -e dirname($document) . "/$_";
  }
}

# Whatever else the library showed could take the place of the host's own.
my ($factory) = text_of('src/contracts/host.h') =~ /NomFabrique = "(\w+)"/;
my ($version) = text_of('src/contracts/host.h') =~ /VersionContrat = (\d+)/;
my $shown = join ' ', map { (split)[1, 2] } `nm -D --defined-only '$library'`;
wrong("the library shows $shown") unless $shown eq "T $factory$version";

wrong("the search found nothing to judge") if $judged < 500 || $named < 100;
exit $wrong;
