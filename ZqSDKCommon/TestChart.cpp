#include "ZqSDKCommon/TestChart.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include <ZqApi/Library.h>

namespace ZqApi {
namespace {

// Both charts are designed for samples of 8 bits.
constexpr uint8_t GROUND = 131;
constexpr std::array<uint8_t, 11> STEPS = {255, 234, 212, 190, 167, 143, 120, 94, 67, 37, 0};

struct Colour {
    uint8_t red;
    uint8_t green;
    uint8_t blue;
};

constexpr size_t PATCH_ROWS = 4;
constexpr size_t PATCHES_PER_ROW = 6;
constexpr std::array<Colour, PATCH_ROWS* PATCHES_PER_ROW> PATCHES = {{
    {115, 82, 68},   {194, 150, 130}, {98, 122, 157},  {87, 108, 67},   {133, 128, 177}, {103, 189, 170},
    {214, 126, 44},  {80, 91, 166},   {193, 90, 99},   {94, 60, 108},   {157, 188, 64},  {224, 163, 46},
    {56, 61, 150},   {70, 148, 73},   {175, 54, 60},   {231, 199, 31},  {187, 86, 149},  {8, 133, 161},
    {243, 243, 242}, {200, 200, 200}, {160, 160, 160}, {122, 122, 121}, {85, 85, 85},    {52, 52, 52},
}};

/// The image as a chart is drawn into it.
class Canvas {
public:
    Canvas(IZqImage& image, size_t capacity)
        : m_Info(*GetIZqPixelFormatInfo(image.GetImagePixelFormat())),
          m_pBegin(static_cast<uint8_t*>(image.GetImageBuffer())), m_Capacity(capacity),
          m_Pitch(image.GetImageLinePitch()), width(image.GetImageWidth()), height(image.GetImageHeight()) {}

    /// Brings a sample of 8 bits to the format's depth.
    size_t Shift() const { return std::max<size_t>(ValidBits(), 8) - 8; }
    size_t Maximum() const { return (size_t{1} << ValidBits()) - 1; }
    size_t SamplesPerPixel() const { return m_Info.GetEachPixelTotalComponentCount(); }

    template <class Sample>
    void Put(size_t offset, Sample sample) const {
        if (offset < m_Capacity && m_Capacity - offset >= sizeof sample)
            std::memcpy(m_pBegin + offset, &sample, sizeof sample);
    }
    size_t LineAt(size_t line) const { return line * m_Pitch; }
    /// Whole lines, what follows their pixels included.
    void Clear(size_t firstLine, size_t count) const {
        const size_t begin = std::min(LineAt(firstLine), m_Capacity);
        std::memset(m_pBegin + begin, 0, std::min(LineAt(count), m_Capacity - begin));
    }

private:
    size_t ValidBits() const { return m_Info.GetEachComponentValidBitCount(); }

    const IZqPixelFormatInfo& m_Info;
    uint8_t* const m_pBegin;
    const size_t m_Capacity;
    const size_t m_Pitch;

public:
    const size_t width;
    const size_t height;
};

/// Writes a line's samples one after another.
template <class Sample>
class Pen {
public:
    Pen(const Canvas& canvas, size_t line) : m_Canvas(canvas), m_Offset(canvas.LineAt(line)) {}

    void Put(size_t sample) {
        m_Canvas.Put(m_Offset, static_cast<Sample>(sample));
        Skip(1);
    }
    void Put(size_t count, size_t sample) {
        for (; count > 0; --count)
            Put(sample);
    }
    void Skip(size_t count) { m_Offset += count * sizeof(Sample); }

private:
    const Canvas& m_Canvas;
    size_t m_Offset;
};

/// The grey chart, drawn from top to bottom.
template <class Sample>
class GreyChart {
public:
    explicit GreyChart(const Canvas& canvas)
        : m_Canvas(canvas), m_Ground(size_t{GROUND} << canvas.Shift()), m_StepWidth(canvas.width / 12),
          m_Width(STEPS.size() * m_StepWidth), m_Left(canvas.width / 24),
          m_Right(canvas.width - m_Left - m_Width) {}

    void Draw() {
        DrawGround(m_Canvas.height / 10);
        DrawBand([this](Pen<Sample>& pen) {
            for (const uint8_t step : STEPS)
                pen.Put(m_StepWidth, step);
        });
        DrawBand([this](Pen<Sample>& pen) {
            for (size_t i = 0; i < m_Width; ++i)
                pen.Put(RampAt(i));
        });
        DrawBand([this](Pen<Sample>& pen) {
            for (size_t i = m_Width; i-- > 0;)
                pen.Put(RampAt(i));
        });
        DrawBand([this](Pen<Sample>& pen) {
            for (size_t i = STEPS.size(); i-- > 0;)
                pen.Put(m_StepWidth, STEPS[i]);
        });
        DrawGround(m_Canvas.height - m_Line);
    }

private:
    size_t RampAt(size_t i) const { return i * m_Canvas.Maximum() / (m_Width - 1); }

    void DrawGround(size_t lines) {
        for (const size_t end = m_Line + lines; m_Line < end; ++m_Line)
            Pen<Sample>(m_Canvas, m_Line).Put(m_Canvas.width, m_Ground);
    }

    template <class Content>
    void DrawBand(Content content) {
        for (const size_t end = m_Line + m_Canvas.height / 5; m_Line < end; ++m_Line) {
            Pen<Sample> pen(m_Canvas, m_Line);
            pen.Put(m_Left, m_Ground);
            content(pen);
            pen.Put(m_Right, m_Ground);
        }
    }

    const Canvas& m_Canvas;
    const size_t m_Ground;
    const size_t m_StepWidth;
    const size_t m_Width;
    const size_t m_Left;
    const size_t m_Right;
    size_t m_Line = 0;
};

template <class Sample>
std::vector<Sample> ScaledSteps(size_t shift) {
    std::vector<Sample> steps;
    steps.reserve(STEPS.size());
    for (const uint8_t step : STEPS)
        steps.push_back(static_cast<Sample>(step << shift));
    return steps;
}

/// The colour chart's regions, in pixels and lines.
struct ColourPlan {
    explicit ColourPlan(const Canvas& canvas)
        : patchWidth(canvas.width / 7), gapWidth(canvas.width / 77), patchHeight(canvas.height / 5),
          gapHeight(canvas.height / 45), left(3 * gapWidth),
          right(canvas.width - left - PATCHES_PER_ROW * (patchWidth + gapWidth)), top(3 * gapHeight),
          bottom(canvas.height - top - PATCH_ROWS * (patchHeight + gapHeight)) {}

    size_t patchWidth;
    size_t gapWidth;
    size_t patchHeight;
    size_t gapHeight;
    size_t left;
    size_t right;
    size_t top;
    size_t bottom;
};

template <class Sample>
using Patch = std::array<Sample, 3>;

template <class Sample>
std::vector<Patch<Sample>> PatchesOf(size_t shift, bool rgbOrder) {
    std::vector<Patch<Sample>> patches;
    patches.reserve(PATCHES.size());
    for (const Colour& colour : PATCHES) {
        const auto scaled = [shift](uint8_t value) { return static_cast<Sample>(value << shift); };
        Patch<Sample> patch{scaled(colour.red), scaled(colour.green), scaled(colour.blue)};
        if (!rgbOrder)
            std::swap(patch.front(), patch.back());
        patches.push_back(patch);
    }
    return patches;
}

/// One line of a row of patches.
template <class Sample>
void DrawPatches(Pen<Sample> pen, const ColourPlan& plan, size_t samplesPerPixel,
                 const Patch<Sample>* patches) {
    pen.Put(plan.left * samplesPerPixel, 0);
    for (size_t i = 0; i < PATCHES_PER_ROW; ++i) {
        for (size_t pixel = 0; pixel < plan.patchWidth; ++pixel) {
            for (const Sample sample : patches[i])
                pen.Put(sample);
            pen.Skip(samplesPerPixel - patches[i].size());
        }
        pen.Put(plan.gapWidth * samplesPerPixel, 0);
    }
    pen.Put(plan.right * samplesPerPixel, 0);
}

} // namespace

template <class Sample>
bool MakeChartMono(IZqImage& image, size_t capacity, _EZqMemoryInitialization_t initialization) {
    if (initialization != ZqMemoryInitialization_TestChart)
        return false;
    const Canvas canvas(image, capacity);
    // Kept: the steps are brought to the format's depth, which needs memory, but drawn as designed; only
    // ground and ramps use all of the depth.
    const std::vector<Sample> scaled = ScaledSteps<Sample>(canvas.Shift());
    GreyChart<Sample>(canvas).Draw();
    return true;
}

template <class Sample>
bool MakeChartBGR(IZqImage& image, size_t capacity, _EZqMemoryInitialization_t initialization,
                  bool rgbOrder) {
    if (initialization != ZqMemoryInitialization_TestChart)
        return false;
    const Canvas canvas(image, capacity);
    const ColourPlan plan(canvas);
    const std::vector<Patch<Sample>> patches = PatchesOf<Sample>(canvas.Shift(), rgbOrder);
    // From top to bottom: samples wider than the format's run into the line below, which is drawn over them.
    // The last line of all is below the patches.
    canvas.Clear(0, plan.top);
    size_t line = plan.top;
    for (size_t row = 0; row < PATCH_ROWS; ++row) {
        for (const size_t end = line + plan.patchHeight; line < end; ++line)
            DrawPatches(Pen<Sample>(canvas, line), plan, canvas.SamplesPerPixel(),
                        &patches[row * PATCHES_PER_ROW]);
        canvas.Clear(line, plan.gapHeight);
        line += plan.gapHeight;
    }
    canvas.Clear(line, plan.bottom);
    return true;
}

template bool MakeChartMono<uint8_t>(IZqImage&, size_t, _EZqMemoryInitialization_t);
template bool MakeChartMono<uint16_t>(IZqImage&, size_t, _EZqMemoryInitialization_t);
template bool MakeChartBGR<uint8_t>(IZqImage&, size_t, _EZqMemoryInitialization_t, bool);
template bool MakeChartBGR<uint16_t>(IZqImage&, size_t, _EZqMemoryInitialization_t, bool);

} // namespace ZqApi
