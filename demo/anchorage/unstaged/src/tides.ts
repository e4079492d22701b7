import { Constituent, Station } from "./station";

const minute = 60_000;
const hour = 60 * minute;
const dayLength = 24 * hour;

/** What has to be between keel and ground, however good the prediction is. */
const marginMetres = 0.3;

/** One turn of the tide: when, how high, and which of the two. */
export interface Turn {
    at: Date;
    heightMetres: number;
    kind: "high" | "low";
}

function angle(constituent: Constituent, at: Date): number {
    const hours = at.getTime() / hour;
    return (constituent.speed * hours + constituent.phase) % 360;
}

/** The height above chart datum at a moment. */
export function height(station: Station, at: Date): number {
    let sum = station.meanMetres;
    for (const constituent of station.constituents) {
        const radians = (angle(constituent, at) * Math.PI) / 180;
        sum += constituent.amplitude * Math.cos(radians);
    }
    return Math.round(sum * 100) / 100;
}

/** The turns between midnight and midnight UTC. Whoever shows them applies the station's zone. */
export function turns(station: Station, day: Date): Turn[] {
    const found: Turn[] = [];
    const start = day.getTime();
    let before = height(station, new Date(start - 6 * minute));
    let here = height(station, new Date(start));
    for (let at = start; at < start + dayLength; at += 6 * minute) {
        const after = height(station, new Date(at + 6 * minute));
        if (here > before && here >= after) {
            found.push({ at: new Date(at), heightMetres: here, kind: "high" });
        }
        if (here < before && here <= after) {
            found.push({ at: new Date(at), heightMetres: here, kind: "low" });
        }
        before = here;
        here = after;
    }
    return found;
}

/** Whether a keel clears the bottom for the whole of a stay. */
export function clears(station: Station, keelMetres: number, from: Date, until: Date): boolean {
    for (let at = from.getTime(); at <= until.getTime(); at += 10 * minute) {
        if (height(station, new Date(at)) < keelMetres + marginMetres) {
            return false;
        }
    }
    return true;
}
