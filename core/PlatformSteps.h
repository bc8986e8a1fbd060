#pragma once

namespace tavren {

class Prompter;

// The start-up steps that only exist on Windows: the media-player prerequisite and the
// visual-styles manifest beside the executable. Elsewhere they are compiled out.
class PlatformSteps {
  public:
    // False when the program must end (the media player is missing; the user was asked).
    static bool checkMediaPlayer(Prompter& prompter);
    static void ensureVisualStylesManifest();
};

}  // namespace tavren
