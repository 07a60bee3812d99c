
"use strict";
// Finds nodes by number and label while a person types. Without it the page lacks nothing else.
(() => {
    const most = 50;
    const sought = document.getElementById("sought");
    const found = document.getElementById("found");
    const told = document.getElementById("told");
    const fold = text => text.normalize("NFC").toLowerCase();
    let nodes;

    const read = () => Array.from(document.querySelectorAll("[data-node]"), element => {
        const name = element.querySelector(".n").textContent;
        const label = element.querySelector(".l").textContent;
        const [type, number] = fold(name).split(/ (?=[^ ]*$)/);
        return { place: element.id, name, label, type, number, text: fold(label) };
    });

    // As of the program's own search: each word is in the label, or is the type; or begins the number.
    const fits = (node, word) => node.text.includes(word) || node.type === word || node.number.startsWith(word);

    const show = () => {
        nodes ??= read();
        const words = fold(sought.value).split(/\s+/).filter(word => word);
        const hits = words.length ? nodes.filter(node => words.every(word => fits(node, word))) : [];
        const exact = node => words.includes(node.number) ? 0 : 1;
        hits.sort((a, b) => exact(a) - exact(b));
        found.replaceChildren(...hits.slice(0, most).map(node => {
            const item = document.createElement("li");
            const link = document.createElement("a");
            const label = document.createElement("bdi");
            link.href = "#" + node.place;
            label.textContent = node.label;
            link.append(node.name, " ", label);
            item.append(link);
            return item;
        }));
        found.hidden = !hits.length;
        told.textContent = !words.length ? "" : hits.length > most ? hits.length + " nodes, the first " + most
            : hits.length === 1 ? "1 node" : hits.length + " nodes";
    };

    const close = () => {
        sought.value = "";
        show();
    };

    const step = (from, by) => {
        const stops = [sought, ...found.querySelectorAll("a")];
        stops[Math.min(stops.length - 1, Math.max(0, stops.indexOf(from) + by))].focus();
    };

    sought.addEventListener("input", show);
    found.addEventListener("click", event => {
        if (event.target.closest("a")) {
            close();
        }
    });
    document.getElementById("find").addEventListener("keydown", event => {
        if (event.key === "ArrowDown" || event.key === "ArrowUp") {
            step(document.activeElement, event.key === "ArrowDown" ? 1 : -1);
        } else if (event.key === "Escape") {
            close();
            sought.focus();
        } else if (event.key === "Enter" && document.activeElement === sought && !found.hidden) {
            found.querySelector("a").click();
        } else {
            return;
        }
        event.preventDefault();
    });
    document.getElementById("find").hidden = false;
    window.addEventListener("load", () => setTimeout(() => nodes ??= read(), 0));
})();
