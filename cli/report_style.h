// The styles and constant markup of a report.
#pragma once

namespace zqv::cli {

// The page may load only pictures that it contains. It runs no scripts and sends nothing.
#define ZQV_REPORT_POLICY                                                                       \
  "default-src 'none'; img-src data:; style-src 'unsafe-inline'; form-action 'none'; base-uri " \
  "'none'"

inline constexpr char kPageStart[] =
    R"(<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content=")" ZQV_REPORT_POLICY R"(">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="referrer" content="no-referrer">
<style>
:root {
  color-scheme: light dark;
  --ground: #f4f5f7; --card: #fff; --ink: #1c2128; --faint: #616b78; --line: #dde1e6;
  --accent: #0b5cad; --warning: #8a4b00; --warning-ground: #fff4e0; --warning-line: #f0d3a0;
}
@media screen and (prefers-color-scheme: dark) {
  :root {
    --ground: #14181d; --card: #1d232b; --ink: #e3e7ec; --faint: #98a3b0; --line: #333c47;
    --accent: #79b8ff; --warning: #ffc67d; --warning-ground: #33281a; --warning-line: #5c4526;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0; background: var(--ground); color: var(--ink);
  font: 16px/1.5 system-ui, "Segoe UI", Roboto, "Helvetica Neue", Arial, sans-serif;
}
main { max-width: 62rem; margin: 0 auto; padding: 1.5rem 1rem 3rem; }
h1 { font-size: 1.6rem; line-height: 1.25; margin: 0 0 .25rem; overflow-wrap: anywhere; }
h2 { font-size: 1.05rem; margin: 0 0 .75rem; }
h2 small { font-weight: normal; color: var(--faint); margin-left: .35em; }
section {
  background: var(--card); border: 1px solid var(--line); border-radius: .6rem;
  padding: 1rem 1.125rem; margin-top: 1rem;
}
section.warning { background: var(--warning-ground); border-color: var(--warning-line); }
section.warning h2 { color: var(--warning); }
.file, .note { color: var(--faint); font-size: .9rem; margin: 0; overflow-wrap: anywhere; }
.note { margin-top: .6rem; }
dl {
  display: grid; grid-template-columns: fit-content(35%) minmax(0, 1fr); gap: .3rem 1.1rem;
  margin: 0;
}
dt { color: var(--faint); overflow-wrap: anywhere; }
dd { margin: 0; overflow-wrap: anywhere; unicode-bidi: isolate; }
pre {
  margin: 0; white-space: pre-wrap; overflow-wrap: anywhere; tab-size: 4;
  font: .875rem/1.5 ui-monospace, "SF Mono", Menlo, Consolas, "DejaVu Sans Mono", monospace;
}
.letter {
  position: relative; display: grid; grid-template-columns: minmax(0, 1fr); overflow: hidden;
  min-height: 3rem; resize: vertical; contain: layout paint; isolation: isolate;
  border: 1px solid var(--line); border-radius: .4rem; background: #fff; color-scheme: light;
}
.copy {
  max-height: max(20rem, 85vh); padding-bottom: 1px; scrollbar-gutter: stable;
  opacity: 0; overflow: hidden; contain: content;
}
.copy template { display: block; height: 26rem; }
iframe { position: absolute; inset: 0; width: 100%; height: 100%; border: 0; background: #fff; }
ul { list-style: none; margin: 0; padding: 0; }
.findings li { display: flex; gap: .1rem 1rem; flex-wrap: wrap; padding: .3rem 0; }
.findings li + li { border-top: 1px solid var(--warning-line); }
.findings .place { color: var(--warning); min-width: 9.5rem; }
.findings .words { flex: 1 1 20rem; overflow-wrap: anywhere; }
.files { display: grid; grid-template-columns: repeat(auto-fill, minmax(15rem, 1fr)); gap: .9rem; }
.files li { border: 1px solid var(--line); border-radius: .5rem; overflow: hidden; }
.files .picture {
  display: flex; align-items: center; justify-content: center; height: 10rem; padding: .5rem;
  border-bottom: 1px solid var(--line);
  background: repeating-conic-gradient(#e9ebee 0 25%, #f8f9fa 0 50%) 0 0 / 18px 18px;
}
.files img { max-width: 100%; max-height: 100%; image-rendering: auto; }
.files .words { padding: .6rem .75rem; overflow-wrap: anywhere; }
.files .name { font-weight: 600; unicode-bidi: isolate; }
.files .about { color: var(--faint); font-size: .85rem; display: block; }
details > summary {
  cursor: pointer; display: flex; gap: 0 .9rem; align-items: baseline; padding: .35rem 0;
  overflow-wrap: anywhere;
}
details > summary::before { content: "\25B8"; color: var(--faint); flex: none; width: .8em; }
details[open] > summary::before { content: "\25BE"; }
summary::-webkit-details-marker { display: none; }
summary:hover .type, summary:focus-visible .type { color: var(--accent); }
.parts > li + li { border-top: 1px solid var(--line); }
.parts .number { color: var(--faint); font-variant-numeric: tabular-nums; flex: none; }
.parts .size { margin-left: auto; color: var(--faint); flex: none; white-space: nowrap; }
.parts .type { flex: none; max-width: 60%; }
.parts .name { color: var(--faint); unicode-bidi: isolate; }
.within { padding: .35rem 0 .9rem 1.7rem; }
.within pre { margin-top: .8rem; padding-top: .8rem; border-top: 1px dashed var(--line); }
.fields { font-size: .875rem; }
.links li, .sums li {
  display: flex; flex-direction: column; padding: .45rem 0; overflow-wrap: anywhere;
}
.links li + li, .sums li + li { border-top: 1px solid var(--line); }
.links .says, .links .goes, .sums .name { unicode-bidi: isolate; }
.links .goes { color: var(--faint); font-size: .875rem; }
.links b { color: var(--ink); margin-right: .5em; }
.links .mark { color: var(--warning); font-size: .875rem; }
.links .differs { border-left: 3px solid var(--warning); padding-left: .6rem; }
.sums .name { font-weight: 600; }
.sums .about { color: var(--faint); font-size: .85rem; }
code { font: .8rem/1.5 ui-monospace, "SF Mono", Menlo, Consolas, "DejaVu Sans Mono", monospace; }
@media (max-width: 36rem) {
  main { padding: 1rem .625rem 2rem; }
  section { padding: .875rem .75rem; }
  dl { display: block; }
  dd { margin-bottom: .4rem; }
  .parts li { padding-left: 0 !important; }
  .parts summary { flex-wrap: wrap; }
  .within { padding-left: .4rem; }
}
@media print {
  :root { color-scheme: light; --ground: #fff; }
  main { max-width: none; padding: 0; }
  h2 { break-after: avoid; }
  .files li, .links li, .sums li, .findings li { break-inside: avoid; }
  details > summary::before { content: none; }
  details:not([open])::details-content { content-visibility: visible; }
  iframe { display: none; }
  .letter { display: block; resize: none; }
  .copy { max-height: none; scrollbar-gutter: auto; opacity: 1; }
  .copy template { height: auto; }
  .copy template::after { content: "This browser does not print the HTML of the message."; }
}
</style>
)";

// The message's HTML is on the page twice: in a frame and in a copy. CSS classes call it "letter".
//
// The frame is what the reader sees. It is sandboxed: a document of its own, where even markup that
// should have been removed could not run code, send anything, cover the page or navigate away. But
// a frame has a fixed height, to which it is cut when it is printed, and without a script it cannot
// adapt to the height of its content.
//
// The copy is in a declarative shadow tree (shadowrootmode, no script). Styles of the message have
// no effect outside the shadow tree, and its end tags cannot close the template. The classes
// .letter and .copy, which the message's styles cannot reach, clip what it paints. On the screen
// the copy is transparent, inert and behind the frame; its only purpose is to give the frame its
// height. On paper, where nobody can click, the copy is displayed. Browsers without declarative
// shadow trees show the frame with a fixed height and print a note.
//
// Browsers round the size of a frame to whole pixels, which could wrap a line that does not wrap in
// the copy. Therefore all widths around it are whole pixels, and the copy is one pixel higher than
// its text.
//
// Both reserve space for a vertical scroll bar. Otherwise a frame that is too low during layout
// would get one, which wraps lines, so that the bar would stay.
//
// A wide message scrolls horizontally inside the frame. A scroll bar of the frame itself would
// reduce its height.
#define ZQV_MESSAGE_STYLE                                                                 \
  "zqv-html{display:flow-root;overflow-x:auto;background:#fff;color:#000;"                \
  "font:16px/1.45 system-ui,sans-serif;overflow-wrap:break-word}"                         \
  "zqv-body{display:block;margin:.8rem}a[title]{color:#0b5cad;text-decoration:underline;" \
  "cursor:help}img{max-width:100%}"

// On paper the message is as high as its text and no wider than the page, whatever its own styles
// say: important declarations in a layer override the message's.
inline constexpr char kCopyStart[] =
    "<div class=\"copy\" inert><div><template shadowrootmode=\"open\"><style>"
    ":host{all:initial;display:block;color-scheme:light}" ZQV_MESSAGE_STYLE
    R"(
@media print{@layer paper{
*{max-width:100%!important;max-height:none!important;min-width:0!important;
overflow:visible!important;text-wrap-mode:wrap!important;overflow-wrap:anywhere!important;
content-visibility:visible!important}
:not(img,hr){height:auto!important}
}}</style>)";
inline constexpr char kCopyEnd[] = "</template></div></div>\n";

// The start of the frame's document. The same policy applies to it.
inline constexpr char kFrameStart[] =
    R"(<!doctype html><meta http-equiv="Content-Security-Policy" content=")" ZQV_REPORT_POLICY
    R"("><style>:root{color-scheme:light;scrollbar-gutter:stable}html,body{height:100%})"
    "body{margin:0}zqv-html{min-height:100%}" ZQV_MESSAGE_STYLE "</style>\n";

#undef ZQV_MESSAGE_STYLE
#undef ZQV_REPORT_POLICY

}  // namespace zqv::cli
