// SPDX-License-Identifier: MIT
// The data of the page, decoded when it is first used: one block a level.
import { block } from "../common/dom";

export interface Summary {
    k: number;
    n: number;
    exact: number;
    largest: number;
    second: number;
    covered: number;
    shared: number;
}

export interface Head {
    title: string;
    input: string;
    directed: boolean;
    weights: [number | null, number | null];
    intensity: number | null;
    timeLimit: number | null;
    nodes: number;
    links: number;
    cliques: number;
    exactCliques: number;
    levels: Summary[];
    kept: number[];
    start: number | null;
    leftOut: string[];
}

type Distribution = [number[], number[]];

interface StoredLevel {
    sizes: number[];
    members: number[];
    links: number[];
    cliques: number[] | null;
    top: number[][];
    graph: [number[], number[], number[]];
    picture: { of: number[]; r: number[]; x: number[]; y: number[]; links: number[] };
    distributions: Record<string, Record<string, Distribution>>;
}

/** The communities of one k. */
export class Level {
    readonly n: number;
    readonly sizes: number[];
    readonly links: number[];
    readonly cliques: number[] | null;
    readonly top: number[][];
    readonly graph: [number[], number[], number[]];
    readonly picture: StoredLevel["picture"];
    readonly distributions: StoredLevel["distributions"];
    /** For each community, in how many others it has nodes. */
    readonly degrees: Uint32Array;
    /** For each community, how many of its nodes are in others too. */
    readonly sharedNodes: Uint32Array;
    private readonly members: Uint32Array;
    private readonly offsets: Uint32Array;
    private readonly ownOffsets: Uint32Array;
    private readonly own: Uint32Array;

    constructor(
        readonly k: number,
        readonly exact: number,
        nNodes: number,
        stored: StoredLevel,
    ) {
        this.sizes = stored.sizes;
        this.n = stored.sizes.length;
        this.links = stored.links;
        this.cliques = stored.cliques;
        this.top = stored.top;
        this.graph = stored.graph;
        this.picture = stored.picture;
        this.distributions = stored.distributions;
        this.offsets = new Uint32Array(this.n + 1);
        this.members = new Uint32Array(stored.members.length);
        this.ownOffsets = new Uint32Array(nNodes + 1);
        let at = 0;
        for (let c = 0; c < this.n; c++) {
            let node = 0;
            for (let i = 0; i < this.sizes[c]; i++, at++) {
                node += stored.members[at];
                this.members[at] = node;
                this.ownOffsets[node + 1]++;
            }
            this.offsets[c + 1] = at;
        }
        for (let node = 0; node < nNodes; node++) {
            this.ownOffsets[node + 1] += this.ownOffsets[node];
        }
        this.own = new Uint32Array(at);
        const next = this.ownOffsets.slice();
        this.sharedNodes = new Uint32Array(this.n);
        for (let c = 0; c < this.n; c++) {
            for (const node of this.of(c)) {
                this.own[next[node]++] = c;
                if (this.ownOffsets[node + 1] - this.ownOffsets[node] > 1) {
                    this.sharedNodes[c]++;
                }
            }
        }
        this.degrees = new Uint32Array(this.n);
        for (const end of [this.graph[0], this.graph[1]]) {
            for (const c of end) {
                this.degrees[c]++;
            }
        }
    }

    /** The nodes of a community, ascending. */
    of(community: number): Uint32Array {
        return this.members.subarray(this.offsets[community], this.offsets[community + 1]);
    }

    /** The communities of a node, ascending. */
    communitiesOf(node: number): Uint32Array {
        return this.own.subarray(this.ownOffsets[node], this.ownOffsets[node + 1]);
    }

    isExact(community: number): boolean {
        return community < this.exact;
    }

    /** The communities that share nodes with one: [number, shared nodes], most shared first. */
    neighbours(community: number): [number, number][] {
        const [a, b, shared] = this.graph;
        const found: [number, number][] = [];
        for (let i = 0; i < a.length; i++) {
            if (a[i] === community) {
                found.push([b[i], shared[i]]);
            } else if (b[i] === community) {
                found.push([a[i], shared[i]]);
            }
        }
        return found.sort((one, other) => other[1] - one[1] || one[0] - other[0]);
    }
}

export interface Link {
    source: number;
    target: number;
    /** 1: from source to target, 2: from target to source, 3: both, or undirected. */
    direction: number;
    /** Whether it is inside a community of the level asked for. */
    inside: boolean;
}

class Links {
    private readonly offsets: Uint32Array;
    private readonly target: Uint32Array;

    constructor(
        private readonly stored: {
            source: number[];
            target: number[];
            direction?: number[];
            top?: number[];
            inside?: Record<string, number[]>;
        },
        nNodes: number,
    ) {
        const n = stored.source.length;
        this.offsets = new Uint32Array(nNodes + 1);
        this.target = new Uint32Array(n);
        let node = 0;
        let before = 0;
        for (let i = 0; i < n; i++) {
            if (stored.source[i] > 0 || i === 0) {
                node += stored.source[i];
                before = node;
            }
            before += stored.target[i];
            this.target[i] = before;
            this.offsets[node + 1]++;
        }
        for (let i = 0; i < nNodes; i++) {
            this.offsets[i + 1] += this.offsets[i];
        }
    }

    among(nodes: number[], k: number): Link[] {
        const wanted = new Set(nodes);
        const inside = this.stored.inside === undefined ? null : new Set(this.stored.inside[String(k)] ?? []);
        const found: Link[] = [];
        for (const source of nodes) {
            for (let i = this.offsets[source]; i < this.offsets[source + 1]; i++) {
                if (wanted.has(this.target[i])) {
                    found.push({
                        source,
                        target: this.target[i],
                        direction: this.stored.direction?.[i] ?? 3,
                        inside: inside === null ? (this.stored.top?.[i] ?? 0) >= k : inside.has(i),
                    });
                }
            }
        }
        return found;
    }
}

export class Data {
    readonly head: Head;
    private readonly levels = new Map<number, Level>();
    private allNames: string[] | null = null;
    private links: Links | null | undefined;

    constructor() {
        const head = block<Head>("head");
        if (head === null) {
            throw new Error("this page holds no data");
        }
        this.head = head;
    }

    get names(): string[] {
        this.allNames ??= block<string[]>("names") ?? [];
        return this.allNames;
    }

    name(node: number): string {
        return this.names[node] ?? `node ${node}`;
    }

    summary(k: number): Summary {
        const found = this.head.levels.find((level) => level.k === k);
        if (found === undefined) {
            throw new Error(`no level ${k}`);
        }
        return found;
    }

    level(k: number): Level {
        let level = this.levels.get(k);
        if (level === undefined) {
            const stored = block<StoredLevel>(`k${k}`);
            if (stored === null) {
                throw new Error(`no level ${k}`);
            }
            level = new Level(k, this.summary(k).exact, this.head.nodes, stored);
            this.levels.set(k, level);
        }
        return level;
    }

    /** The links among some nodes, or null when the page holds no links. */
    linksAmong(nodes: number[], k: number): Link[] | null {
        if (this.links === undefined) {
            const stored = block<ConstructorParameters<typeof Links>[0]>("links");
            this.links = stored === null ? null : new Links(stored, this.head.nodes);
        }
        return this.links === null ? null : this.links.among(nodes, k);
    }
}
