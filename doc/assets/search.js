// Search over the manual's pages, client-side: search-index.js defines
// ZORVS_INDEX, one entry per page with its title, the routine and keyword
// names it mentions and its text.  Every word of the query must occur in a
// page; a word that is a name on the page, or in its title, counts more.
(function () {
  // The sidebar marks the page on show.
  var here = window.location.pathname.split("/").pop() || "index.html";
  var links = document.querySelectorAll("#sidebar a");
  for (var n = 0; n < links.length; n++)
    if (links[n].getAttribute("href") === here) links[n].className = "current";

  var box = document.getElementById("search");
  var list = document.getElementById("results");
  if (!box || !list || typeof ZORVS_INDEX === "undefined") return;

  function score(entry, terms) {
    var total = 0;
    var title = entry.title.toLowerCase(), names = entry.names.toLowerCase(), text = entry.text.toLowerCase();
    for (var i = 0; i < terms.length; i++) {
      var t = terms[i], s = 0;
      if (title.indexOf(t) >= 0) s += 10;
      if (names.indexOf(t) >= 0) s += 5;
      if (text.indexOf(t) >= 0) s += 1;
      if (s === 0) return 0;
      total += s;
    }
    return total;
  }

  function snippet(entry, term) {
    var at = entry.text.toLowerCase().indexOf(term);
    if (at < 0) return "";
    var from = Math.max(0, at - 40);
    return (from > 0 ? "..." : "") + entry.text.substr(from, 100) + "...";
  }

  function show() {
    var terms = box.value.toLowerCase().split(/\s+/).filter(function (t) { return t.length > 0; });
    list.innerHTML = "";
    if (terms.length === 0) return;
    var hits = [];
    for (var i = 0; i < ZORVS_INDEX.length; i++) {
      var s = score(ZORVS_INDEX[i], terms);
      if (s > 0) hits.push([s, ZORVS_INDEX[i]]);
    }
    hits.sort(function (a, b) { return b[0] - a[0]; });
    if (hits.length === 0) {
      var none = document.createElement("li");
      none.textContent = "No page matches.";
      list.appendChild(none);
    }
    for (var k = 0; k < hits.length && k < 12; k++) {
      var e = hits[k][1];
      var li = document.createElement("li");
      var a = document.createElement("a");
      a.href = e.page;
      a.textContent = e.title;
      var hit = document.createElement("span");
      hit.className = "hit";
      hit.textContent = snippet(e, terms[0]);
      li.appendChild(a);
      li.appendChild(hit);
      list.appendChild(li);
    }
  }

  box.addEventListener("input", show);
  var query = new URLSearchParams(window.location.search).get("q");
  if (query) { box.value = query; show(); }
})();
