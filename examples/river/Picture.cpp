#include "examples/river/Picture.h"

#include <array>
#include <cstdarg>
#include <cstdio>

namespace River
{

namespace
{

// Points of the picture per world unit.
constexpr float scale = 4.0F;
constexpr float left = -125.0F;
constexpr float top = -50.0F;
constexpr int width = 1000;
constexpr int height = 370;

constexpr std::array<const char*, 8> colours = {
    "#b2182b", "#e08214", "#7f6000", "#1b7837", "#01665e", "#2166ac", "#762a83", "#c51b7d"};

class Svg
{
public:
    Svg()
    {
        Add("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%d\" height=\"%d\" viewBox=\"0 0 %d %d\" "
            "font-family=\"sans-serif\" font-size=\"13\">\n",
            width, height, width, height);
        Add("<rect width=\"100%%\" height=\"100%%\" fill=\"#fbfaf5\"/>\n");
    }

    // Both compilers check the values against the format.
    __attribute__((format(printf, 2, 3))) void Add(const char* format, ...)
    {
        std::array<char, 400> line{};
        std::va_list values;
        va_start(values, format);
        std::vsnprintf(line.data(), line.size(), format, values);
        va_end(values);
        text += line.data();
    }

    void AddPath(const std::vector<Quon::Vector3>& points, const char* style)
    {
        text += "<polyline fill=\"none\" points=\"";
        for (const Quon::Vector3& point : points) {
            Add("%.1f,%.1f ", X(point), Y(point));
        }
        Add("\" %s/>\n", style);
    }

    void AddCircle(const Quon::Vector3& place, float radius, const char* style)
    {
        Add("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"%.1f\" %s/>\n", X(place), Y(place), radius, style);
    }

    void AddLine(const Quon::Vector3& from, const Quon::Vector3& to, const char* style)
    {
        Add("<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" %s/>\n", X(from), Y(from), X(to), Y(to),
            style);
    }

    static float X(const Quon::Vector3& place) { return (place.x - left) * scale; }
    static float Y(const Quon::Vector3& place) { return (place.z - top) * scale; }

    std::string Finish() { return text + "</svg>\n"; }

private:
    std::string text;
};

void DrawStep(Svg& svg, const Step& step, std::size_t number)
{
    const std::string colour = colours[number % colours.size()];
    const std::string stroke = "stroke=\"" + colour + "\" stroke-width=\"1.2\" stroke-dasharray=\"5 3\"";
    for (const Quon::Vector3& place : step.places) {
        svg.AddLine(step.listener, place, stroke.c_str());
    }
    // The first source has full gain, the others half of it.
    for (std::size_t rank = 0; rank < step.places.size(); ++rank) {
        const std::string style = "stroke=\"" + colour + "\" stroke-width=\"2\" fill=\"" +
            (rank == 0 ? colour : std::string("#fbfaf5")) + '"';
        svg.AddCircle(step.places[rank], rank == 0 ? 6.0F : 4.5F, style.c_str());
    }
    svg.AddCircle(step.listener, 10.0F, ("fill=\"" + colour + '"').c_str());
    svg.Add("<text x=\"%.1f\" y=\"%.1f\" fill=\"white\" text-anchor=\"middle\">%d</text>\n",
        static_cast<double>(Svg::X(step.listener)), static_cast<double>(Svg::Y(step.listener) + 4.5F),
        static_cast<int>(number + 1));
}

} // namespace

std::string Draw(const std::vector<Quon::Vector3>& river, const std::vector<Step>& steps)
{
    Svg svg;
    svg.AddPath(
        river, "stroke=\"#9ecae1\" stroke-width=\"16\" stroke-linejoin=\"round\" stroke-linecap=\"round\"");
    for (const Quon::Vector3& point : river) {
        svg.AddCircle(point, 2.5F, "fill=\"#4292c6\"");
    }
    std::vector<Quon::Vector3> path;
    path.reserve(steps.size());
    for (const Step& step : steps) {
        path.push_back(step.listener);
    }
    svg.AddPath(path, "stroke=\"#888888\" stroke-width=\"1.5\"");
    for (std::size_t number = 0; number < steps.size(); ++number) {
        DrawStep(svg, steps[number], number);
    }
    svg.Add(
        "<text x=\"20\" y=\"%d\" fill=\"#444444\">A listener walks from 1 to %d. At each step the river is "
        "heard from the points of its colour: the nearest (filled) at full gain, the others (hollow) at half "
        "gain.</text>\n",
        height - 16, static_cast<int>(steps.size()));
    return svg.Finish();
}

} // namespace River
