#include "tools/harmonet/preview/PreviewPage.h"

#include <nlohmann/json.hpp>

namespace Tool
{

namespace
{

constexpr const char* head = R"(<!DOCTYPE html>
<html lang="en">
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<style>
:root { color-scheme: light dark; --line: #8884; --quiet: #888; --error: #c33; --warning: #b70; }
body { font: 15px/1.4 system-ui, sans-serif; margin: 2em auto; max-width: 70em; padding: 0 1em; }
input { font: inherit; padding: .2em .5em; margin-right: 1em; }
article { display: grid; grid-template-columns: 20em 1fr; gap: 0 1.5em; border-top: 1px solid var(--line); padding: .8em 0; }
h2 { font-size: 1em; margin: 0; overflow-wrap: anywhere; }
p, ul { margin: .2em 0; padding: 0; }
ul { list-style: none; grid-column: 1 / 3; }
small { color: var(--quiet); }
.error::before { content: "error: "; color: var(--error); }
.warning::before { content: "warning: "; color: var(--warning); }
figure { margin: .3em 0 0; padding-left: 4.5em; font-size: .8em; color: var(--quiet); }
canvas { display: block; width: 100%; height: 9em; image-rendering: pixelated; background: #000; }
.picture { position: relative; }
figure span { position: absolute; left: -4.5em; width: 4em; text-align: right; transform: translateY(50%); }
figcaption { display: flex; justify-content: space-between; }
@media (max-width: 45em) { article { grid-template-columns: 1fr; } ul { grid-column: 1; } }
</style>
)";

constexpr const char* script = R"(<script>
const records = JSON.parse(document.getElementById("records").textContent);
const make = (parent, tag, text, kind) => {
    const made = parent.appendChild(document.createElement(tag));
    if (text) made.textContent = text;
    if (kind) made.className = kind;
    return made;
};
// The loudness measurement ignores everything below -70 LUFS.
const level = record => record.peakDecibels === null ? "silent"
    : `${record.lufs === null ? "below -70" : record.lufs.toFixed(1)} LUFS, peak ${record.peakDecibels.toFixed(1)} dB`;
const channels = count => ["mono", "stereo"][count - 1] || `${count} channels`;
const lowestHz = 40;
// Black, violet, red, yellow, white.
const colour = level => [[0, 0, 0], [70, 20, 120], [200, 50, 70], [250, 180, 50], [255, 255, 230]].reduce(
    (mixed, part, i) => mixed.map((value, j) => value + part[j] * Math.max(0, 1 - Math.abs(level * 4 - i))), [0, 0, 0]);
const draw = (canvas, columns) => {
    const rows = columns[0].length;
    canvas.width = columns.length;
    canvas.height = rows;
    const picture = new ImageData(columns.length, rows);
    columns.forEach((column, x) => [...column].forEach((letter, row) =>
        picture.data.set([...colour(parseInt(letter, 36) / 35), 255], 4 * ((rows - 1 - row) * columns.length + x))));
    canvas.getContext("2d").putImageData(picture, 0, 0);
};
// The rows of the spectrogram run from the lowest frequency to half the rate, on a logarithmic scale.
const show = (place, record) => {
    const highestHz = record.rateHz / 2;
    const figure = make(place, "figure");
    const picture = make(figure, "div", "", "picture");
    const canvas = make(picture, "canvas");
    canvas.setAttribute("role", "img");
    canvas.setAttribute("aria-label", `Spectrogram of ${record.name}, ${lowestHz} Hz to ${highestHz} Hz`);
    draw(canvas, record.columns);
    for (const [hertz, text] of [[100, "100 Hz"], [1000, "1 kHz"], [10000, "10 kHz"]])
        if (hertz < highestHz)
            make(picture, "span", text).style.cssText = "bottom: " +
                100 * Math.log(hertz / lowestHz) / Math.log(highestHz / lowestHz) + "%";
    const times = make(figure, "figcaption");
    make(times, "div", "0 s");
    make(times, "div", `${record.seconds.toFixed(2)} s`);
};
for (const record of records) {
    const article = make(document.body, "article");
    article.dataset.name = record.name.toLowerCase();
    article.dataset.remarks = record.findings.length + (record.error ? 1 : 0);
    const words = make(article, "div");
    make(words, "h2", record.name);
    if (record.seconds !== undefined) {
        make(words, "p", `${record.seconds.toFixed(2)} s, ${level(record)}`);
        make(words, "small", `${record.soundFile}: ${record.rateHz} Hz, ${channels(record.channels)}` +
            `, gain ${+record.gain.toFixed(3)}${record.looping ? ", loop" : ""}`);
    }
    if (record.columns && record.columns.length) show(make(article, "div"), record);
    const list = make(article, "ul");
    // An error in the definition is the better explanation.
    if (record.error && !record.findings.some(finding => finding.severity === "error"))
        make(list, "li", record.error, "error");
    for (const finding of record.findings)
        make(list, "li", (finding.line ? `line ${finding.line}: ` : "") + finding.text, finding.severity);
}
const search = document.getElementById("search"), remarks = document.getElementById("remarks");
search.oninput = remarks.oninput = () => {
    for (const article of document.querySelectorAll("article"))
        article.hidden = !article.dataset.name.includes(search.value.toLowerCase()) ||
            remarks.checked && article.dataset.remarks === "0";
};
</script>
</html>
)";

void ReplaceAll(std::string& text, const std::string& from, const std::string& to)
{
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
}

std::string EscapeHtml(std::string text)
{
    ReplaceAll(text, "&", "&amp;");
    ReplaceAll(text, "<", "&lt;");
    return text;
}

} // namespace

std::string MakePreviewPage(const std::string& title, const nlohmann::ordered_json& records)
{
    std::string json = records.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    // No text in the JSON can end the element.
    ReplaceAll(json, "<", "\\u003c");
    const std::string name = EscapeHtml(title);
    return head + ("<title>" + name + "</title>\n<h1>" + name + "</h1>\n") +
        "<p><input id=\"search\" type=\"search\" placeholder=\"Search\" aria-label=\"Search by name\">"
        "<label><input id=\"remarks\" type=\"checkbox\">with findings only</label></p>\n"
        "<script type=\"application/json\" id=\"records\">" +
        json + "</script>\n" + script;
}

} // namespace Tool
