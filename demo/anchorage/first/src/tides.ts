import { Constituent, Station } from "./station";

const hour = 3_600_000;

/** One turn of the tide: when, how high, and which of the two. */
export interface Turn {
    at: Date;
    heightMetres: number;
    kind: "high" | "low";
}

function angle(constituent: Constituent, at: Date): number {
    const hours = at.getTime() / hour;
    return constituent.speed * hours + constituent.phase;
}

/** The height above chart datum at a moment. */
export function height(station: Station, at: Date): number {
    let sum = station.meanMetres;
    for (const constituent of station.constituents) {
        const degrees = angle(constituent, at);
        sum += constituent.amplitude * Math.cos((degrees * Math.PI) / 180);
    }
    return Math.round(sum * 100) / 100;
}

/** The turns of one day, in the station's own time. */
export function turns(station: Station, day: Date): Turn[] {
    const found: Turn[] = [];
    const start = day.getTime() + station.offsetHours * hour;
    let before = height(station, new Date(start - hour / 10));
    let here = height(station, new Date(start));
    for (let step = 1; step <= 240; step++) {
        const at = new Date(start + (step * hour) / 10);
        const after = height(station, at);
        if (here > before && here >= after) {
            found.push({ at, heightMetres: here, kind: "high" });
        }
        if (here < before && here <= after) {
            found.push({ at, heightMetres: here, kind: "low" });
        }
        before = here;
        here = after;
    }
    return found;
}

/** Whether a keel clears the bottom for the whole of a stay. */
export function clears(station: Station, keelMetres: number, from: Date, until: Date): boolean {
    for (let at = from.getTime(); at <= until.getTime(); at += hour / 6) {
        if (height(station, new Date(at)) < keelMetres) {
            return false;
        }
    }
    return true;
}
