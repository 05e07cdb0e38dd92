// Truth: what a browser makes of the report.
#include "program.hpp"

namespace {

constexpr std::size_t LARGEST = 5u << 20;

// Two small bodies, of which one floats.
constexpr const char *CASE = R"([waves]
periods = [2, 3, 4, 6]
headings = [0, 60]
limits = true
[[body]]
maker = "cylinder"
sizes = {radius = 1, draft = 0.5, nu = 5, nv = 3, nw = 3}
[[body]]
maker = "closed-cylinder"
sizes = {radius = 0.6, length = 1, depth = 2.5, nu = 3, nv = 3, nw = 2}
[[spectrum]]
height = 1
period = 4
)";

// What a reader does, and what the page says then.
constexpr const char *READER = R"JS(<script>
const canvas = document.getElementById('mesh');
const colours = () => { const d = canvas.getContext('2d').getImageData(0, 0, 900, 520).data; let s = '';
  for (let i = 0; i < d.length; i += 997 * 4) s += d[i] + ','; return s; };
const before = colours(), angle = canvas.dataset.azimuth;
const event = (type, x) => canvas.dispatchEvent(new PointerEvent(type, {clientX: x, clientY: 100, bubbles: true}));
event('pointerdown', 100); event('pointermove', 180); event('pointerup', 180);
const told = document.createElement('p');
const names = [...document.querySelectorAll('[id]')].map(e => e.id);
const linked = [...document.querySelectorAll('use')].filter(u => !document.querySelector(u.getAttribute('xlink:href')));
told.textContent = 'READER turned ' + (before !== colours()) + ' by ' + (canvas.dataset.azimuth - angle) +
  ' flat ' + (new Set(before.split(',')).size < 20) +
  ' figures ' + [...document.querySelectorAll('figure svg')].filter(s => s.getBoundingClientRect().height > 100).length +
  ' doubled ' + (names.length - new Set(names).size) + ' unlinked ' + linked.length +
  ' tables ' + document.querySelectorAll('table').length + ' errors ' + FAULTS.length + FAULTS.join(';') + ' END';
document.body.appendChild(told);
</script>)JS";
constexpr const char *LISTENER =
    "<script>const FAULTS=[];addEventListener('error',e=>FAULTS.push(e.message));"
    "['error','warn'].forEach(n=>{console[n]=(...a)=>FAULTS.push(a.join(' '));});</script>";

std::size_t count(const std::string &text, const std::string &part) {
    std::size_t n = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++n;
    return n;
}

} // namespace

TEST(ReportPage, IsWholeAndTurnsInABrowser) {
    const TemporaryFolder folder;
    folder.write("case.toml", CASE);
    const Answer run = command(folder, "vorda-run case.toml");
    ASSERT_EQ(run.code, 0) << run.text;
    const std::string page = folder.read("case.run/report.html");
    EXPECT_LT(page.size(), LARGEST);
    // Nothing is fetched: what names a place in the network is a name of XML alone.
    EXPECT_EQ(count(page, "http"), count(page, "http://www.w3.org/"));
    EXPECT_EQ(count(page, "src="), 0u);
    for (const char *head :
         {"What was computed", "Mesh", "Hydrostatics", "Natural periods", "Added mass and damping",
          "Exciting forces", "Motions", "Mean drift", "Treatment", "How good it is", "Where it comes from"})
        EXPECT_EQ(count(page, ">" + std::string(head) + "</h2>"), 1u) << head;
    const std::size_t warnings = page.find("<b>Warnings</b>");
    EXPECT_LT(warnings, page.find("<h2"));

    if (std::system("chromium --version >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "the page is looked at in the browser chromium: install it";
    std::string read = page;
    read.insert(read.find("</head>"), LISTENER);
    folder.write("read.html", read + READER);
    const Answer seen = command(
        folder, "timeout 100 chromium --headless --no-sandbox --disable-gpu --user-data-dir=\"$PWD/chrome\" "
                "--dump-dom \"file://$PWD/read.html\" 2>/dev/null");
    const std::size_t at = seen.text.find("READER turned", seen.text.rfind("</script>"));
    ASSERT_NE(at, std::string::npos) << "chromium shows nothing, code " << seen.code;
    const std::string told = seen.text.substr(at, seen.text.find(" END", at) - at);
    // Coefficients of two bodies in three figures, forces and motions of each in two, drift.
    EXPECT_EQ(told.substr(0, told.find(" tables")),
              "READER turned true by -40 flat false figures 12 doubled 0 unlinked 0");
    EXPECT_NE(told.find("errors 0"), std::string::npos) << told;
    EXPECT_EQ(count(told, "errors 0"), 1u) << told;
}
