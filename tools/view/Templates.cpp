#include "tools/view/Templates.h"

namespace krt9ctl {

const char* const kWindowsTemplate = R"({{#windows}}
<text class="title" x="{{x}}" y="{{titleY}}">{{title}}</text>
<svg x="{{x}}" y="{{y}}" width="{{width}}" height="{{height}}">
{{#elements}}
<rect class="{{style}}" x="{{x}}" y="{{y}}" width="{{width}}" height="{{height}}" data-line="{{line}}"{{#pair}} data-pair="{{pair}}"{{/pair}}><title>{{line}}</title></rect>{{#label}}<text class="label" x="{{labelX}}" y="{{labelY}}">{{label}}</text>{{/label}}
{{/elements}}
</svg>
{{/windows}}
)";

const char* const kStyleTemplate = R"(rect{stroke-width:1}
rect.reached{fill:#bfe0cc;stroke:#1a7f45}
rect.unreached{fill:#fdf3f1;stroke:#d98880}
rect.nameless{fill:none;stroke:#b0b8c0;pointer-events:all}
text{font-family:sans-serif;fill:#202830}
text.title{font-size:16px}
text.label{font-size:9px;pointer-events:none}
)";

const char* const kPictureTemplate =
    R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {{width}} {{height}}" width="{{width}}" height="{{height}}">
<style>{{&style}}</style>
<rect x="0" y="0" width="{{width}}" height="{{height}}" fill="#ffffff"/>
{{#columns}}
<svg x="{{x}}" y="0" width="{{width}}" height="{{height}}">
<text class="title" x="4" y="18">{{title}}</text>
{{>drawing}}
</svg>
{{/columns}}
</svg>
)";

const char* const kPageStyle = R"(
body{margin:0;font:14px sans-serif;color:#202830;background:#ffffff}
header,footer{position:sticky;left:0;right:0;background:#eef1f4;padding:6px 10px;z-index:1}
header{top:0}
footer{bottom:0;min-height:2.6em;white-space:pre-wrap;font-family:monospace}
main{display:flex;gap:10px;padding:10px}
section{flex:1;min-width:0}
main svg{max-width:100%;height:auto}
#search{font:inherit;width:20em}
#results,ul{font-family:monospace;margin:4px 0;padding-left:20px}
.key{padding:0 8px;border:1px solid}
.key.reached{border-color:#1a7f45;background:#bfe0cc}
.key.unreached{border-color:#d98880;background:#fdf3f1}
.key.nameless{border-color:#b0b8c0}
rect{stroke-width:1}
rect.reached{fill:#bfe0cc;stroke:#1a7f45}
rect.unreached{fill:#fdf3f1;stroke:#d98880}
rect.nameless{fill:none;stroke:#b0b8c0;pointer-events:all}
rect.found{fill:#f0b400;stroke:#7a5c00;stroke-width:3}
rect.pointed{stroke:#0050c8;stroke-width:3}
text{fill:#202830}
text.title{font-size:16px}
text.label{font-size:9px;pointer-events:none}
)";

const char* const kScript = R"(
'use strict';
const kMostResults = 200;
const search = document.getElementById('search');
const count = document.getElementById('count');
const results = document.getElementById('results');
const info = document.getElementById('info');
const elements = Array.from(document.querySelectorAll('[data-line]'));
let pointed = [];

function point(element) {
  pointed.forEach(each => each.classList.remove('pointed'));
  const pair = element.dataset.pair;
  pointed = pair ? elements.filter(each => each.dataset.pair === pair) : [element];
  pointed.forEach(each => each.classList.add('pointed'));
  info.textContent = pointed.map(each => each.dataset.line).join('\n');
}

function find() {
  const sought = search.value.toLowerCase();
  const found = elements.filter(each => sought !== '' &&
      each.dataset.line.toLowerCase().includes(sought));
  elements.forEach(each => each.classList.remove('found'));
  found.forEach(each => each.classList.add('found'));
  count.textContent = sought === '' ? '' : found.length + ' of ' + elements.length;
  results.replaceChildren(...found.slice(0, kMostResults).map(each => {
    const item = document.createElement('li');
    item.textContent = each.dataset.line;
    item.addEventListener('mouseover', () => point(each));
    return item;
  }));
}

document.addEventListener('mouseover', event => {
  const element = event.target.closest('[data-line]');
  if (element) {
    point(element);
  }
});
search.addEventListener('input', find);
)";

const char* const kPageTemplate =
    R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; script-src '{{&scriptDigest}}'; style-src '{{&styleDigest}}'; base-uri 'none'; form-action 'none'">
<meta name="referrer" content="no-referrer">
<title>{{title}}</title>
<style>{{&style}}</style>
</head>
<body>
<header>
<input id="search" type="search" placeholder="identifier or text" aria-label="search">
<span id="count"></span>
<span class="key reached">requests can name it</span>
<span class="key unreached">has an identifier, but the search does not find it</span>
<span class="key nameless">has no identifier</span>
<ul id="results"></ul>
</header>
<main>
{{#columns}}
<section>
<h1>{{title}}</h1>
<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {{width}} {{height}}" width="{{width}}" height="{{height}}">
{{>drawing}}
</svg>
{{#leftOut}}
<p>{{leftOut}} further elements are not shown.</p>
{{/leftOut}}
<ul>
{{#undrawn}}
<li data-line="{{.}}">{{.}}</li>
{{/undrawn}}
</ul>
</section>
{{/columns}}
</main>
<footer id="info">Point at an element.</footer>
<script>{{&script}}</script>
</body>
</html>
)";

}  // namespace krt9ctl
