// Adds the parts every screen shares, the status bar and the tab bar, to .screen;
// the body's data-tab names the selected tab.
(function () {
  const screen = document.querySelector(".screen");
  const status = `
  <div class="status">
    <span>9:41</span>
    <span class="icons">
      <span class="signal"><i></i><i></i><i></i><i></i></span>
      <svg class="wifi" viewBox="0 0 16 12"><path d="M8 11.5 5.6 9a3.4 3.4 0 0 1 4.8 0z" fill="#17161C"/><path d="M3.4 6.8a6.5 6.5 0 0 1 9.2 0l-1.3 1.3a4.7 4.7 0 0 0-6.6 0z" fill="#17161C"/><path d="M1.2 4.6a9.6 9.6 0 0 1 13.6 0l-1.3 1.3a7.8 7.8 0 0 0-11 0z" fill="#17161C"/></svg>
      <span class="battery"></span>
    </span>
  </div>`;
  const tabs = [
    ["Subscriptions", '<rect x="4" y="5" width="18" height="4" rx="2" fill="currentColor"/><rect x="4" y="11" width="18" height="4" rx="2" fill="currentColor"/><rect x="4" y="17" width="18" height="4" rx="2" fill="currentColor"/>'],
    ["Insights", '<rect x="4" y="13" width="4" height="9" rx="1.5" fill="currentColor"/><rect x="11" y="6" width="4" height="16" rx="1.5" fill="currentColor"/><rect x="18" y="10" width="4" height="12" rx="1.5" fill="currentColor"/>'],
    ["Calendar", '<rect x="4" y="6" width="18" height="16" rx="3" fill="none" stroke="currentColor" stroke-width="2"/><path d="M4 11h18M9 3v5M17 3v5" stroke="currentColor" stroke-width="2" stroke-linecap="round"/>'],
    ["Settings", '<circle cx="13" cy="13" r="4" fill="none" stroke="currentColor" stroke-width="2"/><path d="M13 3v3M13 20v3M3 13h3M20 13h3M5.9 5.9l2.1 2.1M18 18l2.1 2.1M5.9 20.1 8 18M18 8l2.1-2.1" stroke="currentColor" stroke-width="2" stroke-linecap="round"/>'],
  ];
  const selected = document.body.dataset.tab;
  const tabbar = '<div class="tabbar">' + tabs.map(([name, icon]) =>
    `<div class="tab${name === selected ? " on" : ""}"><svg viewBox="0 0 26 26">${icon}</svg>${name}</div>`).join("") + "</div>";
  screen.insertAdjacentHTML("afterbegin", status);
  screen.insertAdjacentHTML("beforeend", tabbar);
})();
