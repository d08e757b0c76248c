
"use strict";
(function () {
  const form = document.getElementById("search");
  const query = document.getElementById("query");
  const status = document.getElementById("status");
  const contents = document.getElementById("contents");
  const intro = document.getElementById("intro");
  const members = Array.from(document.querySelectorAll(".member"));
  const classes = Array.from(document.querySelectorAll("section.class"));
  const guides = Array.from(document.querySelectorAll("section.guide"));
  const rows = Array.from(contents.querySelectorAll("[data-for]"));
  const opened = new Map();
  let filtering = false;

  function fits(text, words) {
    return words.every((word) => text.includes(word));
  }
  function named(element, words) {
    return fits(element.dataset.name.toLowerCase(), words);
  }
  function told(element, words) {
    return fits(element.textContent.toLowerCase().replace(/\s+/g, " "), words);
  }

  // What to show: by name, or, when no name fits, by what the texts say.
  function chosen(words, test) {
    const shown = new Set();
    for (const kind of classes) {
      const own = members.filter((member) => member.dataset.class === kind.id);
      const about = test === told ? kind.querySelector(".about") : kind;
      const whole = test(about, words);
      const found = whole && test === named ? own : own.filter((member) => test(member, words));
      found.forEach((member) => shown.add(member));
      if (whole || found.length > 0) shown.add(kind);
    }
    guides.filter((guide) => test(guide, words)).forEach((guide) => shown.add(guide));
    return shown;
  }

  function show(shown) {
    for (const element of [...members, ...classes, ...guides]) {
      element.hidden = shown !== null && !shown.has(element);
    }
    intro.hidden = shown !== null;
    document.body.classList.toggle("filtered", shown !== null);
    document.querySelectorAll(".group").forEach((group) => {
      group.hidden = !group.querySelector(".member:not([hidden])");
    });
    rows.forEach((row) => {
      row.hidden = document.getElementById(row.dataset.for).hidden;
    });
    contents.querySelectorAll(".part").forEach((part) => {
      part.hidden = shown !== null;
    });
  }

  // Opens every class in the contents while one searches, and puts them back afterwards.
  function open(all) {
    contents.querySelectorAll("details").forEach((details) => {
      if (all && !filtering) opened.set(details, details.open);
      details.open = all || (opened.has(details) ? opened.get(details) : details.open);
    });
    filtering = all;
  }

  // Members and guides, and classes of which nothing but the text above their members fits.
  function count(shown) {
    const alone = classes.filter((kind) => shown.has(kind)
      && !members.some((member) => shown.has(member) && member.dataset.class === kind.id));
    const found = [...members, ...guides].filter((element) => shown.has(element)).length
      + alone.length;
    return found + (found === 1 ? " result" : " results");
  }

  function filter() {
    const words = query.value.toLowerCase().split(/\s+/).filter(Boolean);
    if (words.length === 0) {
      show(null);
      if (filtering) open(false);
      status.textContent = "";
      return;
    }
    let shown = chosen(words, named);
    let by = "";
    if (shown.size === 0) {
      shown = chosen(words, told);
      by = " in texts";
    }
    show(shown);
    open(true);
    status.textContent = shown.size === 0 ? "Nothing found" : count(shown) + by;
    window.scrollTo(0, 0);
  }

  function clear() {
    query.value = "";
    filter();
  }

  // Goes to the first thing found.
  function first() {
    const found = members.concat(classes, guides).find((element) => !element.hidden);
    if (found && query.value) location.hash = "#" + found.id;
  }

  function target() {
    return document.getElementById(decodeURIComponent(location.hash.slice(1)));
  }

  // A link may lead to what the search hides.
  function arrive() {
    const element = target();
    if (!element) return;
    if (element.closest("[hidden]")) {
      clear();
      element.scrollIntoView();
    }
    follow(element);
  }

  // Marks in the contents what the reader looks at.
  function follow(element) {
    contents.querySelectorAll("[aria-current]").forEach((link) => {
      link.removeAttribute("aria-current");
    });
    const holder = element.closest(".member, section");
    const row = holder && rows.find((other) => other.dataset.for === holder.id);
    if (!row) return;
    row.querySelector("a").setAttribute("aria-current", "true");
    const details = row.closest("details");
    if (details) details.open = true;
    contents.scrollTop = row.offsetTop - contents.clientHeight / 2;
  }

  document.addEventListener("keydown", (event) => {
    const typing = event.target.matches("input, textarea");
    if (event.key === "/" && !typing && !event.ctrlKey && !event.metaKey && !event.altKey) {
      event.preventDefault();
      query.focus();
      query.select();
    } else if (event.key === "Escape" && (query.value || document.activeElement === query)) {
      event.preventDefault();
      clear();
      query.blur();
    }
  });
  form.addEventListener("submit", (event) => {
    event.preventDefault();
    first();
  });
  query.addEventListener("input", filter);
  window.addEventListener("hashchange", arrive);
  form.hidden = false;
  arrive();
})();
