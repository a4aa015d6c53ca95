import { BlockTable } from "./blockTable.js";
import { showCharts } from "./charts.js";
import { readReport } from "./data.js";
import { make } from "./dom.js";
import { MeshView } from "./meshView.js";
import { showOverview } from "./overview.js";

const part = (id) => document.getElementById(id);
const report = readReport();

document.title = report.title;
part("title").textContent = report.title;
part("subtitle").textContent = report.subtitle;
part("made").textContent = report.made;
part("notes").append(...report.notes.map((note) => make("li", {}, note)));

new BlockTable(part("blocks"), report);
showOverview(part("overview"), report.overview);
if (report.series.length > 0) showCharts(part("charts"), report.series);
if (report.meshes.length > 0) showMesh();

function showMesh() {
  try {
    new MeshView(part("mesh"), report);
  } catch (error) {
    const text = `The model cannot be drawn in this browser: ${error.message}`;
    part("mesh").replaceChildren(make("h2", {}, "Mesh"), make("p", { class: "error" }, text));
    part("mesh").hidden = false;
  }
}
