// The text printed for `plakard help`, "--help", "-h" and a run without a
// command. Byte for byte what users and scripts see; no trailing newline.

#include "cli/PlakardCLI.hpp"

namespace plakard {

const std::string_view usageText = R"usage(plakard — compose and size App Store screenshots.

USAGE
  plakard compose --bg '#1F1F23' --headline 'TRACK|EVERY SUBSCRIPTION' \
      --screenshot raw/01.png --out final/01.png --size 1284x2778 \
      [--layout hero|device-top] [--fg '#FFFFFF'] [--font PATH]

      Draws a marketing screenshot at the exact upload size: brand
      background, headline (lines separated by '|', the first set large,
      all of it inside the centre 70%), and the real capture inside a
      drawn phone. 'hero' puts the headline on top and lets the phone run
      off the bottom; 'device-top' hangs the phone from the top edge.

  plakard resize --in raw/01.png --out final/01.png --size 1284x2778 \
      [--fit cover|stretch]

      Brings an image to an exact pixel size and drops its alpha channel,
      which App Store Connect requires. 'cover' crops the overhanging axis
      instead of distorting; 'stretch' resamples straight to the size.

  plakard probe raw/01.png [MORE...]

      Prints WxH, one line per image, in the order given.

Sizes come from `kestrel screenshots sizes --all`, never from memory. The
headline face is Inter Black, shipped beside this binary; --font or
PLAKARD_FONT overrides it.)usage";

}  // namespace plakard
