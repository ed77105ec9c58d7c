"use strict";
// Draws the pictures of the report from the data in the page, and lets its tables be sorted.
(function () {
    const data = JSON.parse(document.getElementById("data").textContent);
    // Told apart by people who see fewer colours, too.
    const colours = ["#0072b2", "#e69f00", "#009e73", "#cc79a7", "#56b4e9", "#d55e00", "#8c7ae6", "#b5a100"];
    const dashes = [[], [6, 3], [2, 2], [8, 3, 2, 3]];
    const charts = [];

    function colourOf(name) {
        return getComputedStyle(document.documentElement).getPropertyValue(name).trim();
    }

    function axis(title, extra) {
        return Object.assign({
            title: { display: true, text: title, color: colourOf("--text") },
            ticks: { color: colourOf("--text") },
            grid: { color: colourOf("--line") },
        }, extra);
    }

    function options(scales, extra) {
        return Object.assign({
            responsive: true,
            maintainAspectRatio: false,
            animation: false,
            scales: scales,
            plugins: { legend: { labels: { color: colourOf("--text") } } },
        }, extra);
    }

    function short(text) {
        return text.length <= 40 ? text : text.slice(0, 18) + "\u2026" + text.slice(-18);
    }

    function bars(id, chart, title, xAxis) {
        const canvas = document.getElementById(id);
        if (!canvas)
            return;
        const perTask = chart.datasets.length * 12 + 14;
        canvas.parentElement.style.height = Math.max(200, 90 + chart.labels.length * perTask) + "px";
        charts.push(new Chart(canvas, {
            type: "bar",
            data: {
                labels: chart.labels.map(short),
                datasets: chart.datasets.map(function (set, i) {
                    return {
                        label: set.label, data: set.values,
                        backgroundColor: colours[i % colours.length],
                        borderColor: colourOf("--text"), borderWidth: i < colours.length ? 0 : 1,
                    };
                }),
            },
            options: options({ x: axis(title, xAxis), y: axis("", {}) }, { indexAxis: "y" }),
        }));
    }

    function time() {
        const canvas = document.getElementById("time");
        if (!canvas)
            return;
        let most = 0;
        const sets = data.time.series.map(function (series, i) {
            most = Math.max.apply(null, series.values.concat(most));
            return {
                label: series.label, borderColor: colours[i % colours.length], borderWidth: 2, pointRadius: 0,
                backgroundColor: colours[i % colours.length], borderDash: dashes[Math.floor(i / colours.length) % 4],
                data: series.values.map(function (value, k) { return { x: k * data.time.step, y: value }; }),
            };
        });
        data.time.stages.forEach(function (stage) {
            sets.push({
                label: stage.label, borderColor: colourOf("--faint"), backgroundColor: colourOf("--faint"),
                borderDash: [4, 4], borderWidth: 1, pointRadius: 0,
                data: [{ x: stage.second, y: 0 }, { x: stage.second, y: most }],
            });
        });
        charts.push(new Chart(canvas, {
            type: "line",
            data: { datasets: sets },
            options: options({
                x: axis("seconds since the start of the first job", { type: "linear", min: 0 }),
                y: axis("MiB/s", { min: 0 }),
            }),
        }));
    }

    function draw() {
        charts.splice(0).forEach(function (chart) { chart.destroy(); });
        bars("rates", data.rates, "MiB/s of the I/O alone, median", { min: 0 });
        bars("latencies", data.latencies, "ms, logarithmic", { type: "logarithmic" });
        data.comparisons.forEach(function (comparison, i) {
            bars("comparison" + i, comparison, "MiB/s of the I/O alone, median", { min: 0 });
        });
        time();
    }

    function valueOf(row, column) {
        const text = row.cells[column].textContent;
        const number = parseFloat(text);
        return row.cells[column].classList.contains("number") ? (isNaN(number) ? -1 : number) : text;
    }

    function sortBy(table, header, column) {
        const down = header.getAttribute("aria-sort") === "ascending";
        table.querySelectorAll("th[aria-sort]").forEach(function (th) { th.removeAttribute("aria-sort"); });
        header.setAttribute("aria-sort", down ? "descending" : "ascending");
        const rows = Array.from(table.tBodies[0].rows);
        rows.sort(function (a, b) {
            const x = valueOf(a, column), y = valueOf(b, column);
            const order = typeof x === "number" ? x - y : x.localeCompare(y, undefined, { numeric: true });
            return down ? -order : order;
        });
        rows.forEach(function (row) { table.tBodies[0].appendChild(row); });
    }

    document.querySelectorAll("table.sortable").forEach(function (table) {
        table.querySelectorAll("thead th").forEach(function (header, column) {
            const button = document.createElement("button");
            button.type = "button";
            button.textContent = header.textContent;
            header.textContent = "";
            header.appendChild(button);
            button.addEventListener("click", function () { sortBy(table, header, column); });
        });
    });
    window.matchMedia("(prefers-color-scheme: dark)").addEventListener("change", draw);
    draw();
})();
