"use strict";
fetch("/api/status").then((r) => r.json()).then((s) => {
    document.getElementById("status").textContent = `${s.User}: ${s.Documents} documents, ${s.Locks} locks`;
});
