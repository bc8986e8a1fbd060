#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tavren::jpeg {

// How one colour component is sampled: horizontal and vertical factors 1..4 and the table pair
// (0 for luminance, 1 for chrominance) it is quantised and coded with.
struct ComponentSampling {
    int horizontal = 1;
    int vertical = 1;
    int table = 0;
};

// The geometry of a picture cut into the 8x8 blocks the file is made of: its size, the sampling
// of its components and the MCUs they make. Blocks are numbered in the order the scan codes
// them (MCU by MCU, inside an MCU component by component, each component's blocks row by row),
// so the encoder's passes are linear sweeps.
class BlockLayout {
  public:
    static constexpr int kMaxComponents = 3;

    // Sets the geometry. Width and height are 1..65535.
    void Prepare(int width, int height, const std::vector<ComponentSampling>& components);

    // Forgets the picture.
    void Clear();
    bool Empty() const { return width_ == 0; }
    int Width() const { return width_; }
    int Height() const { return height_; }
    int ComponentCount() const { return static_cast<int>(components_.size()); }
    const ComponentSampling& Component(int i) const { return components_[i]; }
    int MaxHorizontal() const { return maxHorizontal_; }
    int MaxVertical() const { return maxVertical_; }

    int McuWidth() const { return 8 * maxHorizontal_; }
    int McuHeight() const { return 8 * maxVertical_; }
    int McusAcross() const { return mcusAcross_; }
    int McusDown() const { return mcusDown_; }
    std::size_t McuCount() const { return static_cast<std::size_t>(mcusAcross_) * mcusDown_; }
    int BlocksPerMcu() const { return static_cast<int>(mcuBlockComponent_.size()); }
    std::size_t BlockCount() const { return McuCount() * BlocksPerMcu(); }
    std::size_t BlocksPerMcuRow() const {
        return static_cast<std::size_t>(mcusAcross_) * BlocksPerMcu();
    }
    // Index of the first block of a component inside an MCU.
    int FirstBlockOf(int component) const { return firstBlock_[component]; }
    // The component each block position of an MCU belongs to.
    int ComponentOfMcuBlock(int position) const { return mcuBlockComponent_[position]; }

  private:
    int width_ = 0;
    int height_ = 0;
    std::vector<ComponentSampling> components_;
    int maxHorizontal_ = 1;
    int maxVertical_ = 1;
    int mcusAcross_ = 0;
    int mcusDown_ = 0;
    std::array<int, kMaxComponents> firstBlock_{};
    std::vector<std::uint8_t> mcuBlockComponent_;
};

}  // namespace tavren::jpeg
