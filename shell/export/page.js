// What makes the page move: the tree, the search, the tracing of conversions. Without it the page
// is whole but lies still.
(() => {
  "use strict";

  const byId = (id) => document.getElementById(id);
  const tree = byId("tree");
  const query = byId("query");
  const found = byId("found");
  const menu = byId("menu");
  const nav = byId("nav");
  const nothing = byId("nothing");
  const graph = document.querySelector(".graph");
  const items = Array.from(tree.querySelectorAll("a"));
  const levelOf = (item) => Number(item.dataset.level);
  const entries = Array.from(document.querySelectorAll(".object"));
  const sections = Array.from(document.querySelectorAll("main > section"));
  document.documentElement.classList.remove("no-script");

  // The tree: one stop of the Tab key, and arrows from there.

  tree.setAttribute("role", "tree");
  const parents = new Map();
  const above = [];
  items.forEach((item, i) => {
    const level = levelOf(item);
    above.length = level;
    parents.set(item, above[level - 1] || null);
    above[level] = item;
    const hasChildren = i + 1 < items.length && levelOf(items[i + 1]) > level;
    item.setAttribute("role", "treeitem");
    item.setAttribute("aria-level", level + 1);
    item.tabIndex = -1;
    if (hasChildren) item.setAttribute("aria-expanded", item.dataset.open === "1");
  });
  if (items.length) items[0].tabIndex = 0;

  const isOpen = (item) => item.getAttribute("aria-expanded") === "true";
  const canOpen = (item) => item.hasAttribute("aria-expanded");
  const visible = () => items.filter((item) => !item.hidden);

  // Which items a search keeps, and null when there is none.
  let kept = null;

  function layOut() {
    const shown = new Set();
    for (const item of items) {
      const parent = parents.get(item);
      const isBelowOpen = !parent || (shown.has(parent) && isOpen(parent));
      const isShown = isBelowOpen && (!kept || kept.has(item));
      item.hidden = !isShown;
      if (isShown) shown.add(item);
    }
    if (!items.some((item) => item.tabIndex === 0 && !item.hidden)) {
      for (const item of items) item.tabIndex = -1;
      const first = items.find((item) => !item.hidden);
      if (first) first.tabIndex = 0;
    }
  }

  function setOpen(item, open) {
    if (!canOpen(item)) return;
    item.setAttribute("aria-expanded", open);
    layOut();
  }

  function focusItem(item) {
    if (!item) return;
    for (const other of items) other.tabIndex = other === item ? 0 : -1;
    item.focus();
  }

  tree.addEventListener("click", (event) => {
    const item = event.target.closest("a");
    if (!item) return;
    for (const other of items) other.tabIndex = other === item ? 0 : -1;
    if (event.target.classList.contains("twist") && canOpen(item)) {
      event.preventDefault();
      setOpen(item, !isOpen(item));
      return;
    }
    setOpen(item, true);
    closeMenu();
  });

  tree.addEventListener("keydown", (event) => {
    const item = document.activeElement;
    if (!items.includes(item) || event.ctrlKey || event.altKey || event.metaKey) return;
    const list = visible();
    const at = list.indexOf(item);
    const move = {
      ArrowDown: () => focusItem(list[at + 1]),
      ArrowUp: () => focusItem(list[at - 1]),
      Home: () => focusItem(list[0]),
      End: () => focusItem(list[list.length - 1]),
      ArrowRight: () => {
        if (canOpen(item) && !isOpen(item)) setOpen(item, true);
        else if (canOpen(item)) focusItem(list[at + 1]);
      },
      ArrowLeft: () => {
        if (canOpen(item) && isOpen(item)) setOpen(item, false);
        else focusItem(parents.get(item));
      },
      " ": () => item.click(),
    }[event.key];
    if (move) {
      event.preventDefault();
      move();
    } else if (event.key.length === 1 && event.key !== "/") {
      // A letter leads to the next item that begins with it.
      const letter = event.key.toLowerCase();
      const next = list.slice(at + 1).concat(list.slice(0, at));
      focusItem(next.find((other) => other.dataset.name.toLowerCase().startsWith(letter)));
    }
  });

  // The search: every word must occur in the path, the signature or the text of an object.

  // What is searched and marked; where an object was registered says little about it.
  function textsOf(entry) {
    const texts = [];
    const walker = document.createTreeWalker(entry, NodeFilter.SHOW_TEXT);
    while (walker.nextNode()) {
      if (!walker.currentNode.parentElement.closest(".place")) texts.push(walker.currentNode);
    }
    return texts;
  }

  const haystacks = entries.map((entry) =>
    textsOf(entry).map((node) => node.data).join("").toLowerCase());
  const itemsByTarget = new Map(items.map((item) => [item.getAttribute("href"), item]));
  const itemOf = (entry) => itemsByTarget.get("#" + entry.id);
  const total = entries.length;

  // The better the smaller: an object of that very name, one whose name begins so, any other; and a
  // type before the conversions that bear its name.
  function rank(entry, text) {
    const name = entry.dataset.name.toLowerCase();
    const path = entry.dataset.path.toLowerCase();
    const late = path.startsWith("_conversions/") ? 0.5 : 0;
    if (name === text) return late;
    if (name.startsWith(text)) return 1 + late;
    return (path.includes(text) ? 2 : 3) + late;
  }

  let best = null;

  function highlight(words, shown) {
    if (!window.Highlight || !CSS.highlights) return;
    const ranges = [];
    for (const entry of words.length ? shown.slice(0, 200) : []) {
      for (const node of textsOf(entry)) {
        const text = node.data.toLowerCase();
        // Letters that change their length with their case have no place to mark.
        if (text.length !== node.data.length) continue;
        for (const word of words) {
          for (let at = text.indexOf(word); at >= 0; at = text.indexOf(word, at + word.length)) {
            const range = new Range();
            range.setStart(node, at);
            range.setEnd(node, at + word.length);
            ranges.push(range);
          }
        }
      }
    }
    CSS.highlights.set("found", new Highlight(...ranges));
  }

  function search() {
    const text = query.value.trim().toLowerCase();
    const words = text.split(/\s+/).filter((word) => word);
    const shown = [];
    entries.forEach((entry, i) => {
      entry.hidden = !words.every((word) => haystacks[i].includes(word));
      if (!entry.hidden) shown.push(entry);
    });
    for (const section of sections) {
      const own = section.querySelectorAll(".object");
      section.hidden =
        words.length > 0 && !Array.from(own).some((entry) => !entry.hidden);
    }
    best = null;
    kept = null;
    if (words.length) {
      kept = new Set();
      for (const entry of shown) {
        for (let item = itemOf(entry); item && !kept.has(item); item = parents.get(item)) {
          kept.add(item);
          if (item !== itemOf(entry)) item.setAttribute("aria-expanded", "true");
        }
        if (!best || rank(entry, text) < rank(best, text)) best = entry;
      }
    }
    layOut();
    highlight(words, shown);
    nothing.hidden = !words.length || shown.length > 0;
    found.textContent = words.length ? `${shown.length} of ${total}` : "";
  }

  function setQuery(text) {
    query.value = text;
    search();
  }

  function remember() {
    const text = query.value.trim();
    try {
      history.replaceState(null, "", text ? "#q=" + encodeURIComponent(text) : "#overview");
    } catch {
      // A browser may refuse it to a file; the page works without.
    }
  }

  query.addEventListener("input", () => {
    search();
    remember();
    scrollTo(0, 0);
  });

  query.addEventListener("keydown", (event) => {
    if (event.key === "Escape") {
      event.preventDefault();
      setQuery("");
      remember();
      query.blur();
    } else if (event.key === "ArrowDown") {
      event.preventDefault();
      const item = best ? itemOf(best) : null;
      if (nav.offsetParent !== null) focusItem(item || visible()[0]);
      else if (best) best.querySelector("h3 a").focus();
    } else if (event.key === "Enter" && best) {
      event.preventDefault();
      choose(best);
      best.querySelector("h3 a").focus();
    }
  });

  document.addEventListener("keydown", (event) => {
    const isTyping = /^(INPUT|TEXTAREA|SELECT)$/.test(event.target.tagName || "");
    if (event.key !== "/" || isTyping || event.ctrlKey || event.altKey || event.metaKey) return;
    event.preventDefault();
    query.focus();
    query.select();
  });

  // Places in the page.

  function choose(entry) {
    for (const other of document.querySelectorAll(".chosen")) other.classList.remove("chosen");
    if (entry && entry.classList.contains("object")) entry.classList.add("chosen");
    const item = entry ? itemsByTarget.get("#" + entry.id) : null;
    for (const other of tree.querySelectorAll("[aria-current]")) other.removeAttribute("aria-current");
    if (item) {
      item.setAttribute("aria-current", "location");
      for (let up = parents.get(item); up; up = parents.get(up)) {
        up.setAttribute("aria-expanded", "true");
      }
      layOut();
      item.scrollIntoView({ block: "nearest" });
    }
    if (entry) entry.scrollIntoView({ block: "start" });
  }

  function targetOf(hash) {
    const raw = hash.slice(1);
    return raw ? byId(raw) : null;
  }

  function followHash() {
    const hash = location.hash;
    if (hash.startsWith("#q=")) {
      let text = hash.slice(3);
      try {
        text = decodeURIComponent(text);
      } catch {
        // What is no escape stands for itself.
      }
      setQuery(text);
      return;
    }
    const target = targetOf(hash);
    if (!target) return;
    if (target.closest("[hidden]")) setQuery("");
    choose(target);
  }

  addEventListener("hashchange", followHash);

  // Links lead on also when the page is there already.
  document.addEventListener("click", (event) => {
    const link = event.target.closest && event.target.closest("a[href^='#']");
    if (!link || event.defaultPrevented || link.getAttribute("href") !== location.hash) return;
    followHash();
  });

  // The contents on a narrow screen.

  function closeMenu() {
    nav.classList.remove("open");
    menu.setAttribute("aria-expanded", "false");
  }

  menu.addEventListener("click", () => {
    const open = nav.classList.toggle("open");
    menu.setAttribute("aria-expanded", open);
    if (open) scrollTo(0, 0);
  });

  nav.addEventListener("keydown", (event) => {
    if (event.key !== "Escape" || !nav.classList.contains("open")) return;
    closeMenu();
    menu.focus();
  });

  // The graph: a type that has the pointer or the focus shows its conversions.

  if (graph) {
    const trace = (event) => {
      const node = event.target.closest && event.target.closest("a");
      graph.classList.toggle("traced", node !== null);
      for (const edge of graph.querySelectorAll("path")) {
        const end = node && node.dataset.side === "from" ? edge.dataset.from : edge.dataset.to;
        edge.classList.toggle("traced", node !== null && end === node.dataset.node);
      }
    };
    graph.addEventListener("pointerover", trace);
    graph.addEventListener("focusin", trace);
    const untrace = () => {
      graph.classList.remove("traced");
    };
    graph.addEventListener("pointerleave", untrace);
    graph.addEventListener("focusout", untrace);
  }

  layOut();
  followHash();
  document.documentElement.dataset.ready = "1";
})();
